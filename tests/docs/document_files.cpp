#include "tests/docs/document_files.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <regex>

namespace rasterkit::test {

std::filesystem::path SourceFolder() {
  return RASTERKIT_SOURCE;
}

std::string ReadDocument(const std::filesystem::path& file) {
  std::ifstream in(SourceFolder() / file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::filesystem::path> AllDocuments() {
  std::vector<std::filesystem::path> documents = {"README.md", "CONTRIBUTING.md", "CHANGELOG.md",
                                                  "SECURITY.md"};
  for (const auto& entry : std::filesystem::directory_iterator(SourceFolder() / "docs"))
    if (entry.path().extension() == ".md") documents.push_back("docs" / entry.path().filename());
  return documents;
}

std::vector<std::string> FindAll(const std::string& text, const std::string& pattern) {
  const std::regex regex(pattern);
  std::vector<std::string> found;
  for (std::sregex_iterator it(text.begin(), text.end(), regex), end; it != end; ++it)
    found.push_back((*it)[1]);
  return found;
}

std::string WithoutDetail(const std::string& header) {
  std::string kept = header;
  for (size_t begin = kept.find("\nnamespace detail {"); begin != std::string::npos;
       begin = kept.find("\nnamespace detail {")) {
    const size_t end = kept.find("\n}  // namespace detail\n", begin);
    if (end == std::string::npos) break;
    kept.erase(begin, end - begin);
    kept.erase(begin, std::string("\n}  // namespace detail").size());
  }
  return kept;
}

std::string OutputOf(const std::string& command) {
  std::string output;
  std::array<char, 4096> buffer;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return output;
  while (const size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
    output.append(buffer.data(), count);
  pclose(pipe);
  return output;
}

}  // namespace rasterkit::test
