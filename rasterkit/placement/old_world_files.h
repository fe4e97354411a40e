#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/placement/side_files.h>

namespace rasterkit::detail {

/// What becomes of an old world file when a picture is saved.
enum class Fate {
  keep,
  /// The new position is written under its name.
  replace,
  remove,
  /// Gets a backup name and keeps it: what it says is not known.
  setAside,
  /// It states another position and belongs to another picture, so that the save is refused.
  refuse,
};

/// A world file beside the target.
struct OldWorldFile {
  std::string name;
  /// Nothing if it cannot be read.
  std::optional<Affine> affine;
  /// The neighbor that it belongs to as well; empty if there is none.
  std::string neighbor;
  Fate fate = Fate::keep;
};

/// The world files of one picture.
struct WorldFilePlan {
  std::vector<OldWorldFile> old;
  /// Name of the file that states the position; empty if none does.
  std::string name;
  /// The file of that name stays as it is.
  bool isThere = false;
};

/// Decides for the files beside `picture`, the target or what it leads to. A position is written
/// if `isWished`, or if a shared file would else be taken for it. Throws FileError if the system
/// does not say what is there.
WorldFilePlan PlanWorldFiles(const std::string& picture, const SideFileWish& wish,
                             const Placement& placement, bool isWished);

/// True if the target is the file that the picture came from, with the same pixels.
bool IsSavedOverItself(const SideFileWish& wish);

}  // namespace rasterkit::detail
