#pragma once

#include <string>
#include <vector>

#include <rasterkit/placement/side_files.h>

namespace rasterkit::detail {

/// A file that is written beside the target.
struct NewSideFile {
  std::string name, text;
  /// A file of that name is among the removed ones.
  bool replaces = false;
};

/// A file that is removed from beside the target.
struct OldSideFile {
  std::string name;
  /// It is not deleted but keeps its backup name.
  bool keepsBackup = false;
};

/// What becomes of the files beside a target.
struct SideFilePlan {
  std::vector<NewSideFile> written;
  /// Existing files that are replaced or removed.
  std::vector<OldSideFile> removed;
};

/// Decides by the rules of SideFiles. Throws as its constructor does, and FileError if the system
/// does not say what is there.
SideFilePlan PlanSideFiles(const SideFileWish& wish, const Placement& placement, Changes& changes);

}  // namespace rasterkit::detail
