#include <algorithm>
#include <filesystem>
#include <system_error>

#include <rasterkit/pictures/side_file_losses.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit::detail {

bool CanHaveSideFiles(const std::string& target) {
  std::error_code unused;
  const auto status = std::filesystem::status(ToPath(target), unused);
  return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

SideFileWish WishOf(const PictureSource& source, const PictureState& state, const WritePlan& plan,
                    const std::string& target, const SaveOptions& options) {
  SideFileWish wish;
  wish.target = target;
  wish.source = source.File();
  wish.mayReplace = options.mayReplace;
  wish.writesWorldFile = plan.writesWorldFile;
  wish.hasTags = plan.type == PictureType::tiff;
  wish.hasSamePixels = !state.pixelsChanged;
  wish.width = state.width;
  wish.height = state.height;
  wish.syncs = options.syncs;
  wish.keepsBackup = options.keepsBackup;
  return wish;
}

void AddSideFiles(Report& report, const SideFiles* files, const Changes& changes) {
  if (files != nullptr) report.sideFiles = files->Plans();
  Changes all{std::move(report.losses), std::move(report.notes)};
  Join(all, changes);
  report.losses = std::move(all.losses);
  report.notes = std::move(all.notes);
}

}  // namespace rasterkit::detail
