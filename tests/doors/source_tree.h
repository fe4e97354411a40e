#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace rasterkit::test {

/// What one #include line names.
struct Include {
  std::string name;
  bool isQuoted = false;
};

/// Source files by their path from the root of the tree, "rasterkit/runtime/text.h", with what they
/// include.
using SourceTree = std::map<std::string, std::vector<Include>>;

/// The number of files in each folder, by its path from the root: "rasterkit/runtime".
using FolderSizes = std::map<std::string, int>;

/// The #include lines of a text; those in comments are ignored.
std::vector<Include> ParseIncludes(std::string_view text);

/// Reads every .h and .cpp file below the folders of `root` that hold the house's sources.
SourceTree ReadSourceTree(const std::filesystem::path& root);

/// Counts the files of every folder of sources below `root`: library, tool, tests, fuzz targets and
/// benchmarks. Folders of fuzz inputs hold data and are not counted.
FolderSizes ReadFolderSizes(const std::filesystem::path& root);

}  // namespace rasterkit::test
