#include "tests/doors/doors.h"

#include <algorithm>
#include <optional>
#include <set>

namespace rasterkit::test {
namespace {

struct Folder {
  std::string_view path;
  int floor;
};

/// Every folder of the library and its hosts, from the ground up. A folder knows those on lower
/// floors; folders of one floor do not know each other, so no circle of folders can arise. The
/// folder rasterkit itself holds the umbrella headers, which are for hosts.
constexpr Folder kFolders[] = {
    {"rasterkit/strings", 0},
    {"rasterkit/runtime", 1},
    {"rasterkit/runtime/memory", 2},
    {"rasterkit/runtime/threads", 2},
    {"rasterkit/runtime/files", 3},
    {"rasterkit/runtime/journal", 4},
    {"rasterkit/runtime/worker", 4},
    {"rasterkit/kernels/rows", 4},
    {"rasterkit/kernels/filters", 5},
    {"rasterkit/kernels/bits", 6},
    {"rasterkit/kernels/halftone", 5},
    {"rasterkit/kernels/gray", 6},
    {"rasterkit/kernels/turn", 6},
    {"rasterkit/kernels/mix", 7},
    {"rasterkit/kernels/palette", 7},
    {"rasterkit/kernels/transfer", 7},
    {"rasterkit/metadata/xmp", 7},
    {"rasterkit/metadata", 8},
    {"rasterkit/metadata/edit", 9},
    {"rasterkit/metadata/png", 9},
    {"rasterkit/raster", 9},
    {"rasterkit/raster/stretch", 10},
    {"rasterkit/codecs/g4", 11},
    {"rasterkit/codecs/rows", 11},
    {"rasterkit/codecs/gif", 12},
    {"rasterkit/codecs/heif", 12},
    {"rasterkit/codecs/jp2", 12},
    {"rasterkit/codecs/jpeg", 12},
    {"rasterkit/codecs/png", 12},
    {"rasterkit/codecs/tiff", 12},
    {"rasterkit/codecs/webp", 12},
    {"rasterkit/codecs/tiff/pages", 13},
    {"rasterkit/codecs/bmp", 13},
    {"rasterkit/codecs/messages", 13},
    {"rasterkit/codecs/jpeg/lossless", 13},
    {"rasterkit/codecs/jpeg/rows", 13},
    {"rasterkit/codecs/png/rows", 13},
    {"rasterkit/codecs/tiff/document", 14},
    {"rasterkit/codecs/tiff/rows", 14},
    {"rasterkit/codecs/ico", 15},
    {"rasterkit/codecs", 15},
    {"rasterkit/drawing/ink", 16},
    {"rasterkit/drawing/text", 17},
    {"rasterkit/drawing/context", 18},
    {"rasterkit/metafiles/records", 19},
    {"rasterkit/metafiles/emf", 20},
    {"rasterkit/metafiles/wmf", 21},
    {"rasterkit/metafiles", 22},
    {"rasterkit/graphics", 23},
    {"rasterkit/bitmaptools/pixels", 24},
    {"rasterkit/placement", 24},
    {"rasterkit/jpegexif", 24},
    {"rasterkit/bitmaptools/engine", 25},
    {"rasterkit/tifftobmp", 25},
    {"rasterkit/bitmaptools/rotation", 26},
    {"rasterkit/bitmaptools/files", 27},
    {"rasterkit/bands/stage", 27},
    {"rasterkit/bands/colors", 28},
    {"rasterkit/bands/deskew", 28},
    {"rasterkit/bands", 29},
    {"rasterkit/bands/flow", 30},
    {"rasterkit/pictures/reading", 30},
    {"rasterkit/pictures/fitting", 31},
    {"rasterkit/pictures/sources", 31},
    {"rasterkit/pictures", 32},
    {"rasterkit/startup", 32},
    {"rasterkit/pictures/document", 33},
    {"rasterkit/pictures/recipes", 33},
    {"rasterkit/qt", 33},
    {"rasterkit/qt/pdf", 34},
    {"rasterkit/qt/look", 35},
    {"rasterkit/qt/controls", 36},
    {"rasterkit/qt/forms", 37},
    {"rasterkit/qt/preview", 38},
    {"rasterkit/qt/files", 39},
    {"rasterkit/qt/host", 40},
    {"rasterkit/dialogs/bitmapframe", 41},
    {"rasterkit/dialogs/editchangesize", 41},
    {"rasterkit/dialogs/execbitmap", 41},
    {"rasterkit/dialogs/savedlgext", 41},
    {"rasterkit/dialogs/editpdfbitmap", 42},
    {"rasterkit/dialogs/savedlgbitmap", 42},
    {"rasterkit/dialogs/crop", 43},
    {"rasterkit/dialogs/values", 43},
    {"rasterkit/dialogs/size", 43},
    {"rasterkit/dialogs/saving", 43},
    {"rasterkit/dialogs/editor", 44},
    {"rasterkit/dialogs/editor/window", 45},
    {"rasterkit/dialogs/desktop", 45},
    {"rasterkit", 46},
    {"worker", 47},
    {"tool", 47},
    {"examples", 47},
    {"examples/qt-host", 47},
};

/// The folders of the tool are one floor and know each other.
std::string_view FolderOf(std::string_view path) {
  return path.starts_with("tool/") ? "tool" : path.substr(0, path.rfind('/'));
}

const Folder* FindFolder(std::string_view path) {
  const auto is = [&](const Folder& folder) { return folder.path == FolderOf(path); };
  const auto* folder = std::find_if(std::begin(kFolders), std::end(kFolders), is);
  return folder == std::end(kFolders) ? nullptr : folder;
}

/// Written by Qt's tools while building, and known to the file that includes it alone.
bool IsGenerated(const Include& include) {
  return include.isQuoted && (include.name.starts_with("ui_") || include.name.ends_with(".moc"));
}

/// The house's own file that an include names, or nothing when it is somebody else's. A name that
/// looks like the house's own is returned although no such file exists.
std::optional<std::string> Resolve(const SourceTree& tree, const std::string& from,
                                   const Include& include) {
  if (IsGenerated(include)) return std::nullopt;
  if (!include.isQuoted) {
    return include.name.starts_with("rasterkit/") ? std::optional(include.name) : std::nullopt;
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
  if (!tree.contains(*target)) {
    faults.push_back(Describe(from, include) + ", which is no file of the house");
    return;
  }
  const Folder* here = FindFolder(from);
  const Folder* there = FindFolder(*target);
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
    if (FindFolder(path) == nullptr) faults.push_back(path + " lies in no folder of the table");
    for (const Include& include : includes) CheckDoor(tree, path, include, faults);
  }
  return faults;
}

std::vector<std::string> FindMissingFolders(const SourceTree& tree) {
  std::vector<std::string> faults;
  for (const Folder& folder : kFolders) {
    const auto lies = [&](const auto& file) { return FolderOf(file.first) == folder.path; };
    if (std::none_of(tree.begin(), tree.end(), lies)) faults.emplace_back(folder.path);
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
    // Examples are programs of their own: each has its main.
    if (path.starts_with("examples/")) continue;
    // An umbrella is named after its room, as may be the room's main file.
    if (FolderOf(path) == "rasterkit") continue;
    const auto [place, isNew] = places.emplace(path.substr(path.rfind('/') + 1), path);
    if (!isNew) faults.push_back(place->second + " and " + path + " bear the same name");
  }
  return faults;
}

std::vector<std::string> FindFullFolders(const FolderSizes& sizes) {
  constexpr int kMostFiles = 45;
  std::vector<std::string> faults;
  for (const auto& [folder, files] : sizes) {
    if (files > kMostFiles) faults.push_back(folder + " has " + std::to_string(files) + " files");
  }
  return faults;
}

std::vector<std::string> FindSpreadIncludes(const SourceTree& tree, std::string_view folder) {
  constexpr size_t kMostFiles = 2;
  const auto isOfFolder = [&](const Include& include) { return include.name.starts_with(folder); };
  std::vector<std::string> files;
  for (const auto& [path, includes] : tree) {
    if (!path.starts_with("tool/")) continue;
    if (std::any_of(includes.begin(), includes.end(), isOfFolder)) files.push_back(path);
  }
  return files.size() > kMostFiles ? files : std::vector<std::string>();
}

}  // namespace rasterkit::test
