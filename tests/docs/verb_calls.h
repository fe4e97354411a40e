#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace rasterkit::test {

/// Sources of the tool by file name: "tool/verbs/verb_gray.cpp".
using ToolSources = std::map<std::string, std::string>;

ToolSources ReadToolSources();

/// Names of the library that a verb may call.
struct LibraryNames {
  std::set<std::string> routines, classes;
};

/// Says for each name which verbs reach it, from the function that adds the verb on through all
/// functions of the tool that are called. Sources are laid out as the house does: definitions begin
/// and end in the first column.
std::map<std::string, std::set<std::string>> VerbsByName(const ToolSources& sources,
                                                         const LibraryNames& names);

}  // namespace rasterkit::test
