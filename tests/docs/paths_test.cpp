#include <algorithm>

#include <gtest/gtest.h>

#include "tests/docs/document_files.h"

namespace rasterkit::test {
namespace {

/// Without code blocks, in which a lambda looks like a link.
std::string Prose(const std::string& page) {
  std::string prose;
  size_t begin = 0;
  while (begin < page.size()) {
    const size_t code = std::min(page.find("\n```", begin), page.size());
    prose.append(page, begin, code - begin);
    const size_t end = page.find("\n```", code + 1);
    if (end == std::string::npos) break;
    begin = end + 4;
  }
  return prose;
}

/// Links of Markdown, relative to their page.
TEST(DocsPaths, Links_Should_LeadToFiles) {
  size_t checked = 0;
  for (const auto& document : AllDocuments()) {
    for (std::string link : FindAll(Prose(ReadDocument(document)), R"(\]\(([^)]+)\))")) {
      if (link.find("://") != std::string::npos || link[0] == '#') continue;
      link = link.substr(0, link.find('#'));
      EXPECT_TRUE(std::filesystem::exists(SourceFolder() / document.parent_path() / link))
          << document << ": " << link;
      ++checked;
    }
  }
  EXPECT_GT(checked, 5u);
}

/// Names in code marks that look like paths of the tree: with a slash, beginning with a folder or
/// file of the tree. Folders that commands make are no part of the tree.
TEST(DocsPaths, PathsInCodeMarks_Should_Exist) {
  const std::vector<std::string> roots = {"bench/", "cmake/",     "docs/",      "examples/",
                                          "fuzz/",  "packaging/", "rasterkit/", "samples/",
                                          "tests/", "tool/",      "scripts/"};
  size_t checked = 0;
  for (const auto& document : AllDocuments()) {
    for (const std::string& path : FindAll(ReadDocument(document), "`([A-Za-z_.0-9/-]+)`")) {
      const bool isOurs = std::any_of(roots.begin(), roots.end(), [&](const std::string& root) {
        return path.rfind(root, 0) == 0;
      });
      const bool isPattern = path.find("NAME") != std::string::npos;
      if (!isOurs || isPattern) continue;
      EXPECT_TRUE(std::filesystem::exists(SourceFolder() / path)) << document << ": " << path;
      ++checked;
    }
  }
  EXPECT_GT(checked, 10u);
}

}  // namespace
}  // namespace rasterkit::test
