#include <algorithm>

#include <rasterkit/placement/old_world_files.h>
#include <rasterkit/placement/side_file_names.h>
#include <rasterkit/placement/six_numbers.h>
#include <rasterkit/placement/stated_difference.h>
#include <rasterkit/runtime/files/set_aside.h>

namespace rasterkit::detail {
namespace {

/// For a picture of unknown size.
constexpr int kLargeSide = 65536;

class WorldFilePlanner {
 public:
  WorldFilePlanner(const std::string& picture, const SideFileWish& wish, const Placement& placement)
      : picture_(picture), wish_(wish), placement_(placement) {}

  WorldFilePlan Plan(bool isWished) {
    Find();
    const auto isNeeded = [&](const OldWorldFile& file) {
      return !file.neighbor.empty() && Contradicts(file);
    };
    const auto wrong = std::find_if(plan_.old.begin(), plan_.old.end(), isNeeded);
    const bool writes = placement_.affine && (isWished || wrong != plan_.old.end());
    if (writes) plan_.name = NameToWrite(wrong);
    for (OldWorldFile& file : plan_.old) {
      file.fate = FateOf(file);
      plan_.isThere = plan_.isThere || (file.name == plan_.name && file.fate == Fate::keep);
    }
    return std::move(plan_);
  }

 private:
  using Place = std::vector<OldWorldFile>::iterator;

  void Find() {
    for (const std::string& name : WorldFilesBeside(picture_)) {
      if (FileIdentity(name).IsRegular()) plan_.old.push_back({name, std::nullopt, "", Fate::keep});
    }
    if (plan_.old.empty()) return;
    const std::vector<std::string> neighbors = Neighbors(picture_);
    for (OldWorldFile& old : plan_.old) {
      try {
        if (const auto reading = ReadWorldFileAt(old.name)) old.affine = reading->affine;
      } catch (const FileError&) {
        // What cannot be read is no position that is known to be right.
      }
      for (const std::string& neighbor : neighbors) {
        const auto names = AllWorldFileNames(neighbor);
        if (std::find(names.begin(), names.end(), old.name) == names.end()) continue;
        if (old.neighbor.empty() || IsSource(neighbor)) old.neighbor = neighbor;
      }
    }
  }

  bool IsSource(const std::string& picture) const {
    const FileIdentity source(wish_.source);
    return source.Exists() && source == FileIdentity(picture);
  }

  bool IsExact(const OldWorldFile& old) const {
    return old.affine && placement_.affine && *old.affine == *placement_.affine;
  }

  /// True if another program would take a wrong position from the file.
  bool Contradicts(const OldWorldFile& old) const {
    if (old.affine) {
      const int width = wish_.width > 0 ? wish_.width : kLargeSide;
      const int height = wish_.height > 0 ? wish_.height : kLargeSide;
      return !placement_.affine ||
             !(DifferenceOf(*placement_.affine, *old.affine, width, height) <= kSamePosition);
    }
    // The source was read without it, and the target is as good.
    const bool isOfSource = !old.neighbor.empty() && IsSource(old.neighbor);
    return !isOfSource && !IsSavedOverItself(wish_);
  }

  /// The name in use, if it counts before the shared file that states another position.
  std::string NameToWrite(Place wrong) {
    const auto isOwn = [](const OldWorldFile& file) {
      return file.neighbor.empty() && file.affine;
    };
    const auto own = std::find_if(plan_.old.begin(), wrong, isOwn);
    return own == wrong ? WorldFileNames(picture_).front() : own->name;
  }

  Fate FateOf(const OldWorldFile& old) const {
    const bool isWritten = old.name == plan_.name;
    if (IsExact(old)) return Fate::keep;
    const bool isOwn = old.neighbor.empty();
    const bool isInTheWay = isWritten && !old.affine;
    if (!Contradicts(old) && !isInTheWay) {
      // What is nearly right is written exactly where that is allowed.
      return isWritten && wish_.mayReplace && isOwn ? Fate::replace : Fate::keep;
    }
    if (!isOwn) return plan_.name.empty() || isWritten ? Fate::refuse : Fate::keep;
    if (!old.affine) return Fate::setAside;
    return isWritten ? Fate::replace : Fate::remove;
  }

  const std::string& picture_;
  const SideFileWish& wish_;
  const Placement& placement_;
  WorldFilePlan plan_;
};

}  // namespace

bool IsSavedOverItself(const SideFileWish& wish) {
  if (!wish.hasSamePixels || wish.source.empty()) return false;
  const FileIdentity target(wish.target);
  return target.Exists() && target == FileIdentity(wish.source);
}

WorldFilePlan PlanWorldFiles(const std::string& picture, const SideFileWish& wish,
                             const Placement& placement, bool isWished) {
  return WorldFilePlanner(picture, wish, placement).Plan(isWished);
}

}  // namespace rasterkit::detail
