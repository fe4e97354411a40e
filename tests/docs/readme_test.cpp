#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/document_files.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

/// The example is a program of its own that the packaging test builds and runs.
TEST(DocsReadme, Example_Should_BeTheProgramInExamples) {
  EXPECT_THAT(ReadDocument("README.md"),
              HasSubstr("```cpp\n" + ReadDocument("examples/upright.cpp") + "```"));
}

TEST(DocsReadme, Commands_Should_BeThoseOfRun) {
  const std::string commands = OutputOf((SourceFolder() / "run").string());
  for (const std::string& command : FindAll(ReadDocument("README.md"), "\\./run ([a-z]+)"))
    EXPECT_THAT(commands, HasSubstr("\n  " + command)) << "./run " << command;
}

TEST(DocsReadme, Pages_Should_AllBeListed) {
  for (const auto& document : AllDocuments()) {
    if (document == "README.md") continue;
    EXPECT_THAT(ReadDocument("README.md"), HasSubstr("](" + document.generic_string() + ")"));
  }
}

}  // namespace
}  // namespace rasterkit::test
