#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rasterkit::test {

std::filesystem::path SourceFolder();

/// The whole text of a file of the source tree.
std::string ReadDocument(const std::filesystem::path& file);

/// README.md, CONTRIBUTING.md, CHANGELOG.md, SECURITY.md and every page of docs/.
std::vector<std::filesystem::path> AllDocuments();

/// First groups of every match.
std::vector<std::string> FindAll(const std::string& text, const std::string& pattern);

/// A header without its namespace `detail`, whose names are not for users.
std::string WithoutDetail(const std::string& header);

/// What a command of the shell prints.
std::string OutputOf(const std::string& command);

}  // namespace rasterkit::test
