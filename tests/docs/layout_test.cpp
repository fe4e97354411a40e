// Documents are wrapped, and their tables are tables.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/document_files.h"
#include "tests/docs/page_layout.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kLong(101, 'x');

TEST(FindLayoutFaults, Should_FindLongLines) {
  EXPECT_THAT(FindLayoutFaults("a\n" + kLong + "\n"), ElementsAre("2: has 101 columns"));
  EXPECT_THAT(FindLayoutFaults(kLong.substr(1)), IsEmpty());
  EXPECT_THAT(FindLayoutFaults("[a](" + kLong + ") b"), IsEmpty());
  EXPECT_THAT(FindLayoutFaults("![" + kLong + "](a.png)"), IsEmpty());
  EXPECT_THAT(FindLayoutFaults("[a](b) " + kLong), ElementsAre("1: has 105 columns"));
  EXPECT_THAT(FindLayoutFaults("## " + kLong + "\n```\n" + kLong + "\n```\n"), IsEmpty());
  // Characters count, not bytes.
  EXPECT_THAT(FindLayoutFaults(kLong.substr(2) + "\u00e4"), IsEmpty());
}

TEST(FindLayoutFaults, Should_FindRowsOutsideOfTables) {
  EXPECT_THAT(FindLayoutFaults("| a | b |\n|---|---|\n| c | d |\n\ntext\n"), IsEmpty());
  EXPECT_THAT(FindLayoutFaults("text\n| a | b |\ntext\n"),
              ElementsAre("3: the row before is not part of a table"));
  EXPECT_THAT(FindLayoutFaults("| a | b |\n| c | d |\n"),
              ElementsAre("2: the table has no separator here"));
  EXPECT_THAT(FindLayoutFaults("| a | b |\n|---|---|\n| c |\n"),
              ElementsAre("3: the row has 1 columns, its table 2"));
  EXPECT_THAT(FindLayoutFaults("| a | b |\n|---|---|\n| c | `x\\|y` |\n"), IsEmpty());
}

TEST(FindLayoutFaults, Should_FindOpenCodeBlocks) {
  EXPECT_THAT(FindLayoutFaults("```\ncode"), ElementsAre("2: a code block does not end"));
}

TEST(DocsLayout, Documents_Should_BeWrappedAndHaveWholeTables) {
  size_t checked = 0;
  for (const auto& document : AllDocuments()) {
    for (const std::string& fault : FindLayoutFaults(ReadDocument(document)))
      ADD_FAILURE() << document.generic_string() << ":" << fault;
    ++checked;
  }
  EXPECT_GE(checked, 8u);
}

}  // namespace
}  // namespace rasterkit::test
