#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/doors/source_tree.h"

/// The rules of the house's doors, each a function that lists what is wrong, a line a fault.
namespace rasterkit::test {

/// Doors open downward only: a file includes files of its own folder and of lower floors.
std::vector<std::string> FindWrongDoors(const SourceTree& tree);

/// Folders of the table that hold no source file.
std::vector<std::string> FindMissingFolders(const SourceTree& tree);

/// No file includes itself by way of others.
std::vector<std::string> FindCycles(const SourceTree& tree);

/// No two files of the library bear the same name.
std::vector<std::string> FindTwins(const SourceTree& tree);

/// No folder holds more than 45 files.
std::vector<std::string> FindFullFolders(const FolderSizes& sizes);

/// At most two files of the tool include the library whose headers lie in `folder`, such as "CLI/".
/// Lists the files if there are more.
std::vector<std::string> FindSpreadIncludes(const SourceTree& tree, std::string_view folder);

}  // namespace rasterkit::test
