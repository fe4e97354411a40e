#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/pictures/report.h>
#include <rasterkit/pictures/save_pages.h>
#include <rasterkit/pictures/write_plan.h>
#include <rasterkit/placement/side_files.h>

namespace rasterkit::detail {

/// False for a pipe or a device.
bool CanHaveSideFiles(const std::string& target);

/// The files beside a target; nothing for a pipe or a device.
std::optional<SideFiles> SideFilesOf(const FileParts& parts, const std::string& target,
                                     const SaveOptions& options, Changes& changes);

/// What saving under that name would do, side files included.
Report PlanOfFile(const FileParts& parts, const std::string& target, const SaveOptions& options);

/// `files` may be null.
void AddSideFiles(Report& report, const SideFiles* files, const Changes& changes);

}  // namespace rasterkit::detail
