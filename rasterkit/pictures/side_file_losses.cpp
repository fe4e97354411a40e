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

std::optional<SideFiles> SideFilesOf(const FileParts& parts, const std::string& target,
                                     const SaveOptions& options, Changes& changes) {
  if (!CanHaveSideFiles(target)) return std::nullopt;
  const FirstPage first = FirstPageOf(parts, options, true);
  SideFileWish wish;
  wish.target = target;
  wish.source = first.source->File();
  wish.mayReplace = options.mayReplace;
  wish.writesWorldFile = first.plan.writesWorldFile;
  wish.hasTags = parts.type == PictureType::tiff;
  wish.hasSamePixels = !first.state->pixelsChanged;
  wish.width = first.state->width;
  wish.height = first.state->height;
  wish.syncs = options.syncs;
  wish.keepsBackup = options.keepsBackup;
  return SideFiles(wish, first.state->placement, changes);
}

Report PlanOfFile(const FileParts& parts, const std::string& target, const SaveOptions& options) {
  Report report = ForeseeParts(parts, options, CanHaveSideFiles(target));
  Changes changes;
  if (const auto files = SideFilesOf(parts, target, options, changes)) {
    AddSideFiles(report, &*files, changes);
    report.backups = files->PlannedBackups();
  }
  return report;
}

void AddSideFiles(Report& report, const SideFiles* files, const Changes& changes) {
  if (files != nullptr) report.sideFiles = files->Plans();
  Changes all{std::move(report.losses), std::move(report.notes)};
  Join(all, changes);
  report.losses = std::move(all.losses);
  report.notes = std::move(all.notes);
}

}  // namespace rasterkit::detail
