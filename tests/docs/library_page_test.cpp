// docs/library.md and docs/pdf.md quote programs of examples/, which tests/packaging builds and
// runs; docs/library.md lists every promised header.

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/document_files.h"
#include "tests/doors/header_lists.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

std::string Page() {
  return ReadDocument("docs/library.md");
}

/// The programs of examples/ by their path.
std::vector<std::string> Examples() {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(SourceFolder() / "examples"))
    if (entry.path().extension() == ".cpp")
      paths.push_back("examples/" + entry.path().filename().string());
  return paths;
}

/// What stands between "```cpp" and "```".
std::vector<std::string> CodeBlocks(const std::string& page) {
  static const std::string kOpen = "```cpp\n";
  std::vector<std::string> blocks;
  size_t begin = page.find(kOpen);
  while (begin != std::string::npos) {
    begin += kOpen.size();
    const size_t end = page.find("```", begin);
    if (end == std::string::npos) break;
    blocks.push_back(page.substr(begin, end - begin));
    begin = page.find(kOpen, end);
  }
  return blocks;
}

TEST(DocsLibrary, CodeBlocks_Should_BeProgramsInExamples) {
  std::set<std::string> programs;
  for (const std::string& path : Examples()) programs.insert(ReadDocument(path));
  const std::vector<std::string> blocks = CodeBlocks(Page());
  EXPECT_GE(blocks.size(), 10u);
  for (const std::string& block : blocks)
    EXPECT_TRUE(programs.count(block)) << "no program of examples/ reads\n" << block;
}

TEST(DocsPdf, CodeBlocks_Should_BeTheProgramOfExamples) {
  EXPECT_THAT(CodeBlocks(ReadDocument("docs/pdf.md")),
              testing::ElementsAre(ReadDocument("examples/pdf_page.cpp")));
}

TEST(DocsLibrary, Examples_Should_AllBeQuoted) {
  const std::string pages = Page() + ReadDocument("README.md");
  const std::vector<std::string> blocks = CodeBlocks(pages);
  for (const std::string& path : Examples())
    EXPECT_THAT(blocks, testing::Contains(ReadDocument(path))) << path;
}

/// tests/packaging runs what this list builds.
TEST(DocsLibrary, Examples_Should_AllBeBuilt) {
  const std::string list = ReadDocument("examples/CMakeLists.txt");
  for (const std::string& path : Examples())
    EXPECT_THAT(list, testing::ContainsRegex(
                          "[( \n]" + std::filesystem::path(path).stem().string() + "[ )\n]"))
        << path;
}

TEST(DocsLibrary, HeaderTables_Should_BeThePromisedHeaders) {
  const auto rows = FindAll(Page(), "\n\\| `<(rasterkit/[a-z_/]+/[a-z_]+\\.h)>` \\| [^|]+ \\|");
  EXPECT_EQ(std::set<std::string>(rows.begin(), rows.end()),
            ReadHeaderLists(RASTERKIT_SOURCE).promised);
  EXPECT_EQ(rows.size(), ReadHeaderLists(RASTERKIT_SOURCE).promised.size()) << "one listed twice";
}

}  // namespace
}  // namespace rasterkit::test
