// Patterns of output names.

#include "tool/arguments/name_pattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using tool::CheckNamePattern;
using tool::NameByPattern;

const tool::NameFields kFields = {"plan.a.tif", "plan.a", "png", "rotate", 3, 12};

TEST(NamePattern, Fields_Should_BecomeTheirValues) {
  const std::pair<const char*, const char*> names[] = {{"{stem}-{verb}.{ext}", "plan.a-rotate.png"},
                                                       {"{name}.{ext}", "plan.a.tif.png"},
                                                       {"{number:4}_{page}.png", "0012_3.png"},
                                                       {"{number:1}{page:9}", "12000000003"},
                                                       {"{number:2}{number:3}", "12012"},
                                                       {"{{{stem}}}.{ext}", "{plan.a}.png"},
                                                       {"}}{{", "}{"},
                                                       {"plain.png", "plain.png"},
                                                       {"", ""}};
  for (const auto& [pattern, name] : names) {
    EXPECT_EQ(CheckNamePattern(pattern), "") << pattern;
    EXPECT_EQ(NameByPattern(pattern, kFields), name) << pattern;
  }
}

/// A value is not read as a pattern again.
TEST(NamePattern, BracesOfTheInput_Should_Stay) {
  EXPECT_EQ(NameByPattern("{stem}{verb}", {"{page}.png", "{page}", "png", "gray", 3, 1}),
            "{page}gray");
}

TEST(NamePattern, UnknownField_Should_BeNamedWithTheKnownOnes) {
  for (const char* field : {"{foo}", "{}", "{Stem}", "{ stem}", "{stem:3}", "{number:0}",
                            "{number:10}", "{number:}", "{number:x}", "{page:-1}"}) {
    const std::string problem = CheckNamePattern(std::string("a") + field + "{stem}.png");
    EXPECT_THAT(problem, HasSubstr(std::string("unknown field ") + field)) << field;
    EXPECT_THAT(problem, HasSubstr("{stem}, {name}, {ext}, {verb}, {page}, {number}")) << field;
  }
}

TEST(NamePattern, BraceWithoutItsPartner_Should_BeRefused) {
  for (const char* pattern : {"{stem", "stem}", "{", "}", "{stem}}", "{{stem}", "{ste{m}"}) {
    EXPECT_THAT(CheckNamePattern(pattern), HasSubstr("brace")) << pattern;
  }
}

TEST(NamePattern, Folder_Should_BeRefused) {
  for (const char* pattern : {"a/{stem}", "/{stem}", "../{stem}", "{stem}/"}) {
    EXPECT_THAT(CheckNamePattern(pattern), HasSubstr("'/'")) << pattern;
  }
}

}  // namespace
}  // namespace rasterkit::test
