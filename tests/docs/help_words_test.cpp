// The help texts say things as the field says them.

#include <gtest/gtest.h>

#include "tests/docs/document_files.h"
#include "tests/docs/tool_help.h"
#include "tests/docs/word_area.h"

namespace rasterkit::test {
namespace {

TEST(DocsWords, HelpTexts_Should_BePlainEnglish) {
  WordArea area("help texts");
  const std::string help = OutputOf(RASTERKIT_TOOL " --help");
  area.Check("rasterkit --help", help);
  area.Check("./run", OutputOf((SourceFolder() / "run").string()));
  for (const std::string& verb : VerbsOfTool())
    area.Check("rasterkit " + verb + " --help", OutputOf(RASTERKIT_TOOL " " + verb + " --help"));
  EXPECT_GT(area.Places(), 20u);
  EXPECT_EQ(area.Count(), 0u) << area.Report();
}

}  // namespace
}  // namespace rasterkit::test
