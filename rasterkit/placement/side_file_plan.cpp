#include <algorithm>
#include <filesystem>
#include <optional>

#include <fmt/core.h>

#include <rasterkit/placement/geo_keys.h>
#include <rasterkit/placement/side_file_names.h>
#include <rasterkit/placement/side_file_plan.h>
#include <rasterkit/placement/six_numbers.h>
#include <rasterkit/placement/stated_difference.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/set_aside.h>
#include <rasterkit/runtime/files/small_file.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {
namespace {

/// In pixels: positions that differ by less are the same.
constexpr double kSamePosition = 0.001;
/// For a picture of unknown size.
constexpr int kLargeSide = 65536;
constexpr size_t kLongestProjection = size_t{1} << 20;

/// An absent name and a folder state nothing.
bool IsThere(const std::string& name) {
  return FileIdentity(name).IsRegular();
}

bool Contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// A world file beside the target.
struct OldWorldFile {
  std::string name;
  /// Nothing if it cannot be read.
  std::optional<Affine> affine;
  /// The neighbor that it belongs to as well; empty if there is none.
  std::string neighbor;
  bool belongsToSource = false;
};

class Planner {
 public:
  Planner(const SideFileWish& wish, const Placement& placement, Changes& changes)
      : wish_(wish), placement_(placement), changes_(changes) {}

  SideFilePlan Plan() {
    const FileIdentity target(wish_.target);
    isStraight_ = target.Exists() && !target.IsRegular();
    if (!isStraight_) {
      isInPlace_ = target.Exists() && !wish_.source.empty() && target == FileIdentity(wish_.source);
      PlanWorldFiles(wish_.target, true);
      PlanAttached(wish_.target);
      // Through a link the file of another name is replaced.
      if (const std::string real = NameBehindLink(); !real.empty()) {
        PlanWorldFiles(real, false);
        PlanAttached(real);
      }
      PlanProjection();
    }
    AddLosses();
    return std::move(plan_);
  }

 private:
  [[noreturn]] static void Refuse(const std::string& name, const std::string& reason) {
    throw FileExistsError(reason, name);
  }

  std::string NameBehindLink() const {
    std::error_code error;
    if (!std::filesystem::is_symlink(ToPath(wish_.target), error)) return "";
    const std::filesystem::path real = std::filesystem::canonical(ToPath(wish_.target), error);
    return error ? "" : real.string();
  }

  void Remove(const std::string& name) {
    if (!Contains(plan_.removed, name)) plan_.removed.push_back(name);
  }

  bool IsSame(const Affine& other) const {
    const int width = wish_.width > 0 ? wish_.width : kLargeSide;
    const int height = wish_.height > 0 ? wish_.height : kLargeSide;
    return placement_.affine &&
           DifferenceOf(*placement_.affine, other, width, height) <= kSamePosition;
  }

  std::vector<OldWorldFile> OldWorldFiles(const std::string& picture) const {
    std::vector<OldWorldFile> found;
    for (const std::string& name : WorldFileNames(picture)) {
      if (IsThere(name)) found.push_back({name, std::nullopt, "", false});
    }
    if (found.empty()) return found;
    std::vector<std::string> neighbors = Neighbors(picture);
    const FileIdentity source(wish_.source);
    for (OldWorldFile& old : found) {
      try {
        if (const auto reading = ReadWorldFileAt(old.name)) old.affine = reading->affine;
      } catch (const FileError&) {
        // What cannot be read is no position that is known to be right.
      }
      for (const std::string& neighbor : neighbors) {
        if (!Contains(WorldFileNames(neighbor), old.name)) continue;
        const bool isSource = source.Exists() && source == FileIdentity(neighbor);
        old.belongsToSource = old.belongsToSource || isSource;
        if (old.neighbor.empty() || isSource) old.neighbor = neighbor;
      }
    }
    return found;
  }

  /// True if another program would take a wrong position from the file.
  bool Contradicts(const OldWorldFile& old) const {
    if (old.affine) return !IsSame(*old.affine);
    // The source was read without it, and the target is as good.
    return !old.belongsToSource && !(isInPlace_ && wish_.hasSamePixels);
  }

  void PlanWorldFiles(const std::string& picture, bool isTarget) {
    const std::vector<OldWorldFile> old = OldWorldFiles(picture);
    const auto isWrongAndShared = [&](const OldWorldFile& file) {
      return !file.neighbor.empty() && Contradicts(file);
    };
    const bool isNeeded = std::any_of(old.begin(), old.end(), isWrongAndShared);
    const bool isWished = isTarget ? wish_.writesWorldFile || isNeeded : !old.empty();
    const bool writes = placement_.affine.has_value() && isWished;
    const std::string first = WorldFileNames(picture).front();
    bool hasFirst = false;
    for (const OldWorldFile& file : old) {
      const bool isFirst = file.name == first;
      if (KeepsWorldFile(file, writes, isFirst)) {
        hasFirst = hasFirst || isFirst;
      } else if (wish_.mayReplace) {
        Remove(file.name);
      } else {
        Refuse(file.name, "exists and states another position than the picture to be saved");
      }
    }
    if (!writes) return;
    writesWorldFile_ = true;
    if (hasFirst) return;
    plan_.written.push_back(
        {first, WorldFileText(*placement_.affine), Contains(plan_.removed, first)});
  }

  /// Throws if the file can neither stay nor go.
  bool KeepsWorldFile(const OldWorldFile& old, bool writes, bool isFirst) const {
    const bool isExact = old.affine && placement_.affine && *old.affine == *placement_.affine;
    if (isExact) return true;
    if (!Contradicts(old)) {
      // What is nearly right is written exactly where that is allowed.
      return !(writes && isFirst && wish_.mayReplace && old.neighbor.empty());
    }
    if (old.neighbor.empty()) return false;
    // The first name counts before all others.
    if (writes && !isFirst) return true;
    Refuse(old.name, fmt::format("belongs to {} too and states another position than the picture "
                                 "to be saved",
                                 old.neighbor));
  }

  void PlanAttached(const std::string& picture) {
    for (const std::string& name : AttachedNames(picture)) {
      if (!IsThere(name) || (isInPlace_ && wish_.hasSamePixels)) continue;
      if (!wish_.mayReplace) Refuse(name, "exists and describes another picture");
      Remove(name);
    }
  }

  std::optional<std::string> ProjectionOf(const std::string& picture, std::string& name) const {
    for (const std::string& candidate : ProjectionNames(picture)) {
      if (!IsThere(candidate)) continue;
      name = candidate;
      const auto file = ReadSmallFile(candidate, kLongestProjection);
      if (file && !file->isCut) return file->bytes;
      return "";
    }
    return std::nullopt;
  }

  void PlanProjection() {
    const CoordinateSystem& system = placement_.system;
    std::string ofSource, ofTarget;
    std::optional<std::string> known;
    if (!wish_.source.empty()) known = ProjectionOf(wish_.source, ofSource);
    const bool isFromFile = known.has_value() && !known->empty();
    if (!isFromFile) known = system.wkt;
    const std::optional<std::string> there = ProjectionOf(wish_.target, ofTarget);
    if (there) {
      const bool isOwn = !ofSource.empty() && FileIdentity(ofSource) == FileIdentity(ofTarget);
      hasProjection_ = isOwn || IsSameSystem(*there, *known);
      // A picture that is nowhere, or in an unknown system, is not contradicted.
      if (hasProjection_ || !placement_.IsKnown() || !system.IsKnown()) return;
      Refuse(ofTarget,
             "exists and states another coordinate system than that of the picture to "
             "be saved");
    }
    const bool isNeeded = !wish_.hasTags || system.keys.empty();
    if (known->empty() || (!isFromFile && !isNeeded)) return;
    plan_.written.push_back({ProjectionNames(wish_.target).front(), *known, false});
    hasProjection_ = true;
  }

  bool IsSameSystem(const std::string& there, const std::string& known) const {
    if (!known.empty() && Trim(there) == Trim(known)) return true;
    const std::optional<int> code = ReadWktHead(there).epsg;
    return code && code == placement_.system.Epsg();
  }

  void AddLosses() {
    const char* const why = "neither the file nor one beside it holds it";
    const bool isCarried = wish_.hasTags || writesWorldFile_;
    if (placement_.affine && !isCarried) {
      changes_.Lose(LossKind::position, "map position", why);
    }
    const CoordinateSystem& system = placement_.system;
    const bool isInTags = wish_.hasTags && !system.keys.empty();
    if (system.IsKnown() && !isInTags && !hasProjection_) {
      const std::string name = system.Description();
      changes_.Lose(LossKind::coordinateSystem, name.empty() ? "coordinate system" : name, why);
    }
    AddLostSideFiles();
  }

  void AddLostSideFiles() {
    if (wish_.source.empty() || (isInPlace_ && wish_.hasSamePixels)) return;
    for (const std::string& name : AttachedNames(wish_.source)) {
      if (IsThere(name)) changes_.Lose(LossKind::sideFile, name, "it describes the old picture");
    }
    for (const std::string& name : WorldFileNames(wish_.source)) {
      if (!IsThere(name) || IsStated(name)) continue;
      changes_.Lose(LossKind::sideFile, name, "no position was read from it");
    }
  }

  /// True if a position was read from the file, under whatever name.
  bool IsStated(const std::string& name) const {
    const FileIdentity file(name);
    const auto& stated = placement_.stated;
    return std::any_of(stated.begin(), stated.end(), [&](const StatedPosition& position) {
      return !position.file.empty() && file == FileIdentity(position.file);
    });
  }

  const SideFileWish& wish_;
  const Placement& placement_;
  Changes& changes_;
  SideFilePlan plan_;
  bool isStraight_ = false, isInPlace_ = false;
  bool writesWorldFile_ = false, hasProjection_ = false;
};

}  // namespace

SideFilePlan PlanSideFiles(const SideFileWish& wish, const Placement& placement, Changes& changes) {
  return Planner(wish, placement, changes).Plan();
}

}  // namespace rasterkit::detail
