#include "tests/doors/doors.h"

#include <algorithm>
#include <optional>
#include <set>

namespace rasterkit::test {
namespace {

struct Room {
  std::string_view prefix;
  int floor;
};

/// From the ground up. Rooms of one floor do not know each other.
constexpr Room kRooms[] = {
    {"package/strings.", 0},
    {"host/runtime/", 1},
    {"host/kernels/", 2},
    {"host/raster/", 3},
    {"host/codecs/", 4},
    {"host/drawing/", 4},
    {"host/metafiles/", 5},
    {"host/graphics/", 6},
    {"bitmaptools/pixels/", 7},
    {"bitmaptools/engine/", 8},
    {"tifftobmp/", 9},
    {"jpegexif/", 9},
    {"bitmaptools/files/", 10},
    {"package/", 11},
    {"qt/pdf/", 12},
    {"qt/", 13},
    {"dialogs/", 14},
    {"umbrella/qt.", 14},
    {"umbrella/", 15},
    {"apps/", 16},
    {"examples/", 16},
};

const Room* RoomOf(std::string_view path) {
  const auto holds = [&](const Room& room) { return path.starts_with(room.prefix); };
  const auto* room = std::find_if(std::begin(kRooms), std::end(kRooms), holds);
  return room == std::end(kRooms) ? nullptr : room;
}

/// Headers that the build makes of each part's public ones; no files of the tree.
constexpr std::string_view kUmbrellas[] = {
    "umbrella/host.h",    "umbrella/bitmaptools.h", "umbrella/jpegexif.h", "umbrella/tifftobmp.h",
    "umbrella/package.h", "umbrella/qt.h",          "umbrella/dialogs.h"};

/// Written by Qt's tools while building, and known to the file that includes it alone.
bool IsGenerated(const Include& include) {
  return include.isQuoted && (include.name.starts_with("ui_") || include.name.ends_with(".moc"));
}

bool Exists(const SourceTree& tree, const std::string& path) {
  const auto* umbrella = std::find(std::begin(kUmbrellas), std::end(kUmbrellas), path);
  return umbrella != std::end(kUmbrellas) || tree.contains(path);
}

/// The house's own file that an include names, or nothing when it is somebody else's. A name that
/// looks like the house's own is returned although no such file exists.
std::optional<std::string> Resolve(const SourceTree& tree, const std::string& from,
                                   const Include& include) {
  constexpr std::string_view house = "rasterkit/";
  if (IsGenerated(include)) return std::nullopt;
  if (!include.isQuoted) {
    if (!include.name.starts_with(house)) return std::nullopt;
    const std::string name = include.name.substr(house.size());
    return name.find('/') == std::string::npos ? "umbrella/" + name : name;
  }
  const std::string beside = from.substr(0, from.rfind('/') + 1) + include.name;
  return tree.contains(beside) ? beside : include.name;
}

std::string Describe(const std::string& from, const Include& include) {
  return from + " includes " + include.name;
}

void CheckDoor(const SourceTree& tree, const std::string& from, const Include& include,
               std::vector<std::string>& faults) {
  const std::optional<std::string> target = Resolve(tree, from, include);
  if (!target) return;
  if (!Exists(tree, *target)) {
    faults.push_back(Describe(from, include) + ", which is no file of the house");
    return;
  }
  const Room* here = RoomOf(from);
  const Room* there = RoomOf(*target);
  if (here == nullptr || there == nullptr || here == there) return;
  if (there->floor >= here->floor) {
    faults.push_back(Describe(from, include) + ": doors open downward only");
  }
}

/// Depth-first walk that remembers the way it came.
class CycleFinder {
 public:
  explicit CycleFinder(const SourceTree& tree) : tree_(tree) {}

  std::vector<std::string> Find() {
    for (const auto& [path, includes] : tree_) Visit(path);
    return std::move(faults_);
  }

 private:
  void Visit(const std::string& path) {
    const auto onWay = std::find(way_.begin(), way_.end(), path);
    if (onWay != way_.end()) return Report(onWay);
    if (!done_.insert(path).second) return;
    way_.push_back(path);
    for (const Include& include : tree_.at(path)) {
      const auto target = Resolve(tree_, path, include);
      if (target && tree_.contains(*target)) Visit(*target);
    }
    way_.pop_back();
  }

  void Report(std::vector<std::string>::const_iterator begin) {
    std::string fault;
    for (auto step = begin; step != way_.end(); ++step) fault += *step + " -> ";
    faults_.push_back(fault + *begin);
  }

  const SourceTree& tree_;
  std::set<std::string> done_;
  std::vector<std::string> way_;
  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> FindWrongDoors(const SourceTree& tree) {
  std::vector<std::string> faults;
  for (const auto& [path, includes] : tree) {
    if (RoomOf(path) == nullptr) faults.push_back(path + " lies in no room");
    for (const Include& include : includes) CheckDoor(tree, path, include, faults);
  }
  return faults;
}

std::vector<std::string> FindCycles(const SourceTree& tree) {
  return CycleFinder(tree).Find();
}

std::vector<std::string> FindTwins(const SourceTree& tree) {
  std::map<std::string, std::string> places;
  std::vector<std::string> faults;
  for (const auto& [path, includes] : tree) {
    // Programs are not part of the library: each has its main.
    if (path.starts_with("apps/") || path.starts_with("examples/")) continue;
    const auto [place, isNew] = places.emplace(path.substr(path.rfind('/') + 1), path);
    if (!isNew) faults.push_back(place->second + " and " + path + " bear the same name");
  }
  return faults;
}

}  // namespace rasterkit::test
