// The prose of headers, documents and comments says things as the field says them.
// RASTERKIT_WORDS_FILE=FILE writes all findings to a file, to work through.

#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/document_files.h"
#include "tests/docs/find_words.h"
#include "tests/docs/word_area.h"
#include "tests/doors/header_lists.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

std::vector<std::string> TextsOf(std::string_view text) {
  std::vector<std::string> texts;
  for (const Finding& finding : FindWords(text)) texts.push_back(finding.text);
  return texts;
}

TEST(FindWords, Should_FindThePhrasesOfTheList) {
  EXPECT_THAT(TextsOf("24 bits a pixel, 300 Dots an inch"),
              ElementsAre("bits a pixel", "Dots an inch"));
  EXPECT_THAT(TextsOf("/// values that are none count as 0"), ElementsAre("that are none"));
  EXPECT_THAT(TextsOf("the rule asks for it; GreyColour\nwants none"),
              ElementsAre("asks for", "Colour", "Grey", "wants"));
  EXPECT_THAT(TextsOf("bytes behind the end are left out, whatever its name is"),
              UnorderedElementsAre("behind the end", "are left out", "whatever its"));
}

TEST(FindWords, Should_FindPhrasesOverTheEndOfALineOnce) {
  const std::vector<Finding> findings = FindWords("  // eight bits a\n  // pixel of gray\n");
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].line, 1u);
  EXPECT_EQ(findings[0].text, "bits a pixel");
  EXPECT_THAT(FindWords("# eight\n# bits a pixel\n# and more"), testing::SizeIs(1));
}

TEST(FindWords, Should_NotFindWhatIsRight) {
  EXPECT_THAT(TextsOf("null if there is none; none of them is none of theirs"), IsEmpty());
  EXPECT_THAT(TextsOf("copies pixels a row at a time; \"grey-8bit.png\", `millimetres`"),
              IsEmpty());
  EXPECT_THAT(TextsOf("what is wanted; does nothing else; otherwise noise; analysis"), IsEmpty());
  EXPECT_THAT(TextsOf("behind the port; beside the picture; what was left out"), IsEmpty());
}

/// Promised or not, they are what users of the library read; the umbrellas too.
std::set<std::string> InstalledHeaders() {
  const HeaderLists lists = ReadHeaderLists(RASTERKIT_SOURCE);
  std::set<std::string> headers = lists.promised;
  headers.insert(lists.installed.begin(), lists.installed.end());
  for (const auto& entry : std::filesystem::directory_iterator(SourceFolder() / "rasterkit"))
    if (entry.path().extension() == ".h")
      headers.insert("rasterkit/" + entry.path().filename().string());
  return headers;
}

/// What programmers read: sources, build files and scripts, without installed headers and
/// documents.
std::vector<std::string> OtherFiles() {
  const std::set<std::string> installed = InstalledHeaders();
  // The word list itself, and a test that reads values from the index of the real files.
  const std::set<std::string> own = {"tests/docs/word_list.cpp", "tests/docs/words_test.cpp",
                                     "tests/codecs/photo_corpus_test.cpp"};
  static const std::set<std::string> kExtensions = {".cpp", ".h",    ".cmake", ".sh", ".in",
                                                    ".py",  ".supp", ".yml",   ".md"};
  std::vector<std::string> files = {"run", ".ci/run", "CMakeLists.txt", "CMakePresets.json",
                                    ".clang-tidy"};
  for (const char* folder : {"rasterkit", "tool", "tests", "fuzz", "bench", "examples", "samples",
                             "cmake", "packaging", "scripts", "worker", ".github"}) {
    if (!std::filesystem::exists(SourceFolder() / folder)) continue;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(SourceFolder() / folder)) {
      const std::filesystem::path& path = entry.path();
      const std::string name = path.lexically_relative(SourceFolder()).generic_string();
      const bool isText =
          kExtensions.count(path.extension().string()) || path.filename() == "CMakeLists.txt";
      if (isText && !installed.count(name) && !own.count(name)) files.push_back(name);
    }
  }
  return files;
}

TEST(DocsWords, InstalledHeaders_Should_BePlainEnglish) {
  WordArea area("installed headers");
  for (const std::string& header : InstalledHeaders()) area.Check(header, ReadDocument(header));
  EXPECT_GT(area.Places(), 50u);
  EXPECT_EQ(area.Count(), 0u) << area.Report();
}

TEST(DocsWords, Documents_Should_BePlainEnglish) {
  WordArea area("documents");
  for (const auto& document : AllDocuments())
    area.Check(document.generic_string(), ReadDocument(document));
  EXPECT_GT(area.Places(), 8u);
  EXPECT_EQ(area.Count(), 0u) << area.Report();
}

// Five, since a phrase may be right in its place, as in the name of a test or of somebody's file.
TEST(DocsWords, OtherFiles_Should_BePlainEnglish) {
  WordArea area("sources, tests, build files and scripts");
  for (const std::string& file : OtherFiles()) area.Check(file, ReadDocument(file));
  EXPECT_GT(area.Places(), 1000u);
  EXPECT_LE(area.Count(), 5u) << area.Report();
}

}  // namespace
}  // namespace rasterkit::test
