// docs/security.md has a row for each reader of bytes.

#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/document_files.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

TEST(DocsSecurity, Readers_Should_NameEveryFuzzTarget) {
  const std::string page = ReadDocument("docs/security.md");
  std::istringstream targets(ReadDocument("fuzz/targets.txt"));
  size_t checked = 0;
  for (std::string target; targets >> target;) {
    std::string name = target.substr(target.find('/') + 1);
    name.append("`").insert(name.begin(), '`');
    EXPECT_THAT(page, HasSubstr(name));
    ++checked;
  }
  EXPECT_GE(checked, 10u);
}

/// The table of flags is that of the build.
TEST(DocsSecurity, Flags_Should_BeThoseOfTheBuild) {
  const std::string page = ReadDocument("docs/security.md");
  const std::string build = ReadDocument("cmake/Hardening.cmake");
  size_t checked = 0;
  for (const std::string& flag : FindAll(build, "(?:\\s|\\()(-[fm][a-z-]+(?:=[a-z]+)?)(?=[ )])")) {
    EXPECT_THAT(page, HasSubstr("`" + flag)) << flag;
    ++checked;
  }
  EXPECT_GE(checked, 4u);
}

}  // namespace
}  // namespace rasterkit::test
