// docs/cli.md has a section for each verb and explains each option.

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/document_files.h"
#include "tests/docs/tool_help.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

std::string Page() {
  return ReadDocument("docs/cli.md");
}

/// Free functions that the headers of the units export.
std::set<std::string> ExportedRoutines() {
  std::set<std::string> routines;
  for (const char* room : {"bitmaptools", "jpegexif", "tifftobmp", "startup"}) {
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(SourceFolder() / "rasterkit" / room)) {
      if (entry.path().extension() != ".h") continue;
      const std::string text =
          WithoutDetail(ReadDocument(std::filesystem::relative(entry.path(), SourceFolder())));
      for (const std::string& name :
           FindAll(text, "\nRASTERKIT_EXPORT [^;({]*[ *&]([A-Z][A-Za-z0-9]*)\\("))
        routines.insert(name);
    }
  }
  return routines;
}

TEST(DocsCli, Verbs_Should_EachHaveASection) {
  const std::set<std::string> verbs = VerbsOfTool();
  EXPECT_GE(verbs.size(), 3u);
  for (const std::string& verb : verbs)
    EXPECT_THAT(Page(), HasSubstr("\n### `rasterkit " + verb)) << verb;
  for (const std::string& section : FindAll(Page(), "\n### `rasterkit ([a-z-]+)"))
    EXPECT_TRUE(verbs.count(section)) << section << " is no verb";
}

TEST(DocsCli, Options_Should_AllBeExplained) {
  for (const std::string& verb : VerbsOfTool())
    for (const std::string& option :
         FindAll(OutputOf(RASTERKIT_TOOL " " + verb + " --help"), "\n  (--[a-z-]+)"))
      EXPECT_THAT(Page(), HasSubstr("`" + option)) << verb << " " << option;
}

TEST(DocsCli, Routines_Should_BeSymbolsOfTheLibrary) {
  const std::string symbols = OutputOf("nm -D -C --defined-only " RASTERKIT_LIBRARY);
  ASSERT_FALSE(symbols.empty());
  for (const std::string& routine : ExportedRoutines()) {
    const std::string name = " rasterkit::" + routine;
    const bool isThere = symbols.find(name + "(") != std::string::npos ||
                         symbols.find(name + "[abi:cxx11](") != std::string::npos;
    EXPECT_TRUE(isThere) << routine << " is not exported";
  }
}

}  // namespace
}  // namespace rasterkit::test
