#pragma once

#include <string>
#include <vector>

#include <rasterkit/pictures/report.h>
#include <rasterkit/pictures/write_plan.h>
#include <rasterkit/placement/side_files.h>

namespace rasterkit::detail {

/// False for a pipe or a device.
bool CanHaveSideFiles(const std::string& target);

SideFileWish WishOf(const PictureSource& source, const PictureState& state, const WritePlan& plan,
                    const std::string& target, const SaveOptions& options);

/// `files` may be null.
void AddSideFiles(Report& report, const SideFiles* files, const Changes& changes);

}  // namespace rasterkit::detail
