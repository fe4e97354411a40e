#pragma once

#include <memory>
#include <string>
#include <vector>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/atomic_file.h>

namespace rasterkit {

/// What saving a picture does with the files beside it.
struct SideFileWish {
  /// The picture file to be written, and the one it came from (empty if it came from none).
  std::string target, source;
  /// Existing side files may be replaced or removed (--overwrite, --in-place).
  bool mayReplace = false;
  /// A world file is written: the source had one, or the format holds no tags, or the user
  /// requested it.
  bool writesWorldFile = false;
  /// The target file itself states position and coordinate system in tags.
  bool hasTags = false;
  /// The pixels of the target are those of the source in their places, so that what lies beside
  /// the source's own name stays true if it is saved over itself.
  bool hasSamePixels = false;
  /// Sides of the target in pixels: two positions that differ by less than a thousandth of a pixel
  /// everywhere in it are the same. 0: unknown, then everywhere in 65,536 x 65,536 pixels.
  int width = 0, height = 0;
  bool syncs = true;
  /// Files that are replaced or removed keep a backup name: "plan.tfw~", with the number of the
  /// picture's own backup. The backup names of all files that could state the position are free for
  /// that number.
  bool keepsBackup = false;
};

/// The files beside a target: what becomes of each in the same save.
///
/// A world file is written under the name in use beside the target, else under the first name of
/// WorldFileNames; other world files that state another position, `.aux.xml`, `.ovr` and `.msk` of
/// the target's name are removed. A world file that cannot be read is not deleted: it keeps a name
/// that ends in ".bak". A link becomes a plain file. What belongs to a neighbor too (another
/// picture of the same stem) is never changed. `.prj` is written where there is none. A target that
/// is a pipe or a device has no files beside it.
///
///     SideFiles files(wish, placement);        // finds what is there; throws if it refuses
///     files.Prepare();                         // writes the new ones to temporary files
///     files.BeforeCommit();                    // old world file to its backup name
///     picture->Commit();
///     files.AfterCommit();                     // new world file; removes what would contradict
///
/// Until the picture has its name, a destructor moves the old files back from their backup names.
/// If the new picture has its name and a file beside it could not be written, it does not: the
/// picture has no world file then, rather than a wrong one.
class RASTERKIT_EXPORT SideFiles {
 public:
  /// Throws FileExistsError that names the side file which would contradict the new picture and may
  /// not be replaced, or that is shared with a neighbor so that a contradiction remains. Adds to
  /// `changes` what neither the target nor a file beside it holds: the position, its coordinate
  /// system, and side files of the source. What only tags hold (control points, rational model,
  /// "no data") is the caller's to say.
  SideFiles(const SideFileWish& wish, const Placement& placement, Changes& changes);
  ~SideFiles();
  SideFiles(SideFiles&&) noexcept;

  /// Names that will be written, replaced, removed or set aside, for --dry-run: "writes plan.pgw".
  const std::vector<std::string>& Plans() const;
  /// The backups that would be made at this moment, that of the picture first; none unless they are
  /// wished.
  std::vector<std::string> PlannedBackups() const;
  /// The number for the backup of the picture, known after BeforeCommit; see AtomicFile.
  int BackupNumber() const;
  /// The backups that stay, known after AfterCommit, also if that throws.
  const std::vector<std::string>& Backups() const;
  /// Each of the three throws FileError. AfterCommit throws UnsyncedError if all is done but for
  /// the wait until the names are on the disk.
  void Prepare();
  void BeforeCommit();
  void AfterCommit();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Names of the world files that belong to a picture of this name, in the order in which they
/// count: "plan.tif" gives plan.tfw, plan.TFW, plan.tifw, plan.TIFW, plan.wld, plan.WLD.
RASTERKIT_EXPORT std::vector<std::string> WorldFileNames(const std::string& picture);

/// Writes six lines that read back as the same doubles.
RASTERKIT_EXPORT std::string WorldFileText(const Affine& affine);

}  // namespace rasterkit
