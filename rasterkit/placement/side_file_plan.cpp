#include <algorithm>
#include <filesystem>
#include <optional>

#include <fmt/core.h>

#include <rasterkit/placement/geo_keys.h>
#include <rasterkit/placement/lost_side_files.h>
#include <rasterkit/placement/old_world_files.h>
#include <rasterkit/placement/side_file_names.h>
#include <rasterkit/placement/side_file_plan.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/set_aside.h>
#include <rasterkit/runtime/files/small_file.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kLongestProjection = size_t{1} << 20;

/// An absent name and a folder state nothing.
bool IsThere(const std::string& name) {
  return FileIdentity(name).IsRegular();
}

class Planner {
 public:
  Planner(const SideFileWish& wish, const Placement& placement, Changes& changes)
      : wish_(wish), placement_(placement), changes_(changes) {}

  SideFilePlan Plan() {
    const FileIdentity target(wish_.target);
    const bool isStraight = target.Exists() && !target.IsRegular();
    if (!isStraight) {
      Take(PlanWorldFiles(wish_.target, wish_, placement_, wish_.writesWorldFile));
      PlanAttached(wish_.target);
      // Through a link the file of another name is replaced.
      if (const std::string real = NameBehindLink(); !real.empty()) {
        Take(PlanWorldFiles(real, wish_, placement_, !WorldFilesBeside(real).empty()));
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

  void Remove(const std::string& name, bool keepsBackup = false) {
    const auto is = [&](const OldSideFile& old) { return old.name == name; };
    if (std::none_of(plan_.removed.begin(), plan_.removed.end(), is)) {
      plan_.removed.push_back({name, keepsBackup});
    }
  }

  void Take(const WorldFilePlan& files) {
    bool replaces = false;
    for (const OldWorldFile& old : files.old) {
      if (old.fate == Fate::keep) continue;
      RequireMayGo(old);
      if (old.fate == Fate::setAside) {
        changes_.Note(old.name + " is no world file that can be read; it gets a backup name");
      }
      Remove(old.name, old.fate == Fate::setAside);
      replaces = replaces || old.name == files.name;
    }
    if (files.name.empty()) return;
    carried_.position = true;
    if (files.isThere) return;
    plan_.written.push_back({files.name, WorldFileText(*placement_.affine), replaces});
  }

  void RequireMayGo(const OldWorldFile& old) const {
    const std::string what = old.affine ? "states another position than the picture to be saved"
                                        : "cannot be read as a world file";
    if (old.fate == Fate::refuse) {
      Refuse(old.name, fmt::format("belongs to {} too and {}", old.neighbor, what));
    }
    if (!wish_.mayReplace) Refuse(old.name, "exists and " + what);
  }

  void PlanAttached(const std::string& picture) {
    for (const std::string& name : AttachedNames(picture)) {
      if (!IsThere(name) || IsSavedOverItself(wish_)) continue;
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
      carried_.projection = isOwn || IsSameSystem(*there, *known);
      // A picture that is nowhere, or in an unknown system, is not contradicted.
      if (carried_.projection || !placement_.IsKnown() || !system.IsKnown()) return;
      Refuse(ofTarget,
             "exists and states another coordinate system than that of the picture to "
             "be saved");
    }
    const bool isNeeded = !wish_.hasTags || system.keys.empty();
    if (known->empty() || (!isFromFile && !isNeeded)) return;
    plan_.written.push_back({ProjectionNames(wish_.target).front(), *known, false});
    carried_.projection = true;
  }

  bool IsSameSystem(const std::string& there, const std::string& known) const {
    if (!known.empty() && Trim(there) == Trim(known)) return true;
    const std::optional<int> code = ReadWktHead(there).epsg;
    return code && code == placement_.system.Epsg();
  }

  void AddLosses() {
    const char* const why = "neither the file nor one beside it holds it";
    const CoordinateSystem& system = placement_.system;
    carried_.position = carried_.position || wish_.hasTags;
    carried_.system = carried_.projection || (wish_.hasTags && !system.keys.empty());
    if (placement_.affine && !carried_.position) {
      changes_.Lose(LossKind::position, "map position", why);
    }
    if (system.IsKnown() && !carried_.system) {
      const std::string name = system.Description();
      changes_.Lose(LossKind::coordinateSystem, name.empty() ? "coordinate system" : name, why);
    }
    AddLostSideFiles(wish_, placement_, carried_, changes_);
  }

  const SideFileWish& wish_;
  const Placement& placement_;
  Changes& changes_;
  SideFilePlan plan_;
  Carried carried_;
};

}  // namespace

SideFilePlan PlanSideFiles(const SideFileWish& wish, const Placement& placement, Changes& changes) {
  return Planner(wish, placement, changes).Plan();
}

}  // namespace rasterkit::detail
