#include "tests/doors/source_tree.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace rasterkit::test {
namespace {

constexpr const char* kFolders[] = {"rasterkit", "worker", "tool", "examples"};
constexpr const char* kCountedFolders[] = {"rasterkit", "worker", "tool", "tests", "fuzz", "bench"};
constexpr const char* kDataFolders[] = {"fuzz/seeds/", "fuzz/regressions/"};

bool IsData(const std::string& path) {
  return std::any_of(std::begin(kDataFolders), std::end(kDataFolders),
                     [&](const char* folder) { return path.starts_with(folder); });
}

std::string ReadText(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Without /* */ comments; a // comment cannot hide a line that begins with #include.
std::string WithoutBlockComments(std::string_view text) {
  std::string result;
  while (true) {
    const size_t begin = text.find("/*");
    result += text.substr(0, begin);
    if (begin == std::string_view::npos) return result;
    const size_t end = text.find("*/", begin + 2);
    if (end == std::string_view::npos) return result;
    text.remove_prefix(end + 2);
  }
}

std::string_view TrimLeft(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  text = TrimLeft(text);
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

}  // namespace

std::vector<Include> ParseIncludes(std::string_view text) {
  std::vector<Include> includes;
  std::istringstream lines(WithoutBlockComments(text));
  for (std::string line; std::getline(lines, line);) {
    std::string_view rest = line;
    if (!TakePrefix(rest, "#") || !TakePrefix(rest, "include")) continue;
    rest = TrimLeft(rest);
    if (rest.empty() || (rest[0] != '<' && rest[0] != '"')) continue;
    const bool isQuoted = rest[0] == '"';
    const size_t end = rest.find(isQuoted ? '"' : '>', 1);
    if (end != std::string_view::npos) {
      includes.push_back({std::string(rest.substr(1, end - 1)), isQuoted});
    }
  }
  return includes;
}

SourceTree ReadSourceTree(const std::filesystem::path& root) {
  SourceTree tree;
  for (const char* folder : kFolders) {
    if (!std::filesystem::exists(root / folder)) continue;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
      const std::filesystem::path& path = entry.path();
      if (path.extension() != ".h" && path.extension() != ".cpp") continue;
      tree[path.lexically_relative(root).generic_string()] = ParseIncludes(ReadText(path));
    }
  }
  return tree;
}

FolderSizes ReadFolderSizes(const std::filesystem::path& root) {
  FolderSizes sizes;
  for (const char* folder : kCountedFolders) {
    if (!std::filesystem::exists(root / folder)) continue;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
      const auto path = entry.path().lexically_relative(root);
      if (!entry.is_regular_file() || IsData(path.generic_string())) continue;
      ++sizes[path.parent_path().generic_string()];
    }
  }
  return sizes;
}

}  // namespace rasterkit::test
