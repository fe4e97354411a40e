#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace rasterkit::test {

/// One line of the corpus' INDEX.tsv: column name -> text, empty when no tool reported a value.
using CorpusEntry = std::map<std::string, std::string>;

/// Folder of real files named by the environment variable RASTERKIT_CORPUS; empty when it is unset
/// or absent. Tests that want it call GTEST_SKIP() then.
std::filesystem::path CorpusFolder();

/// All lines of the corpus' index whose path lies in `folder` ("bmp", "jpeg", ...); all lines when
/// it is empty.
std::vector<CorpusEntry> CorpusEntries(const std::string& folder = "");

}  // namespace rasterkit::test
