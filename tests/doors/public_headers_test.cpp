// What is installed: each header is promised, and then in the umbrella of its room, or merely
// installed, and then in no umbrella.

#include <map>
#include <set>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/doors/header_lists.h"
#include "tests/doors/source_tree.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::set<std::string>;

HeaderLists AllHeaders() {
  return ReadHeaderLists(RASTERKIT_SOURCE_TREE);
}

const SourceTree& Tree() {
  static const SourceTree tree = ReadSourceTree(RASTERKIT_SOURCE_TREE);
  return tree;
}

Names IncludesOf(const std::string& header) {
  Names names;
  for (const Include& include : Tree().at(header)) names.insert(include.name);
  return names;
}

/// "rasterkit/raster" for "rasterkit/raster/stretch/blit.h".
std::string RoomOf(const std::string& header) {
  return header.substr(0, header.find('/', header.find('/') + 1));
}

TEST(InstalledHeadersTest, IncludeOnlyInstalledHeaders) {
  const HeaderLists headers = AllHeaders();
  Names all = headers.promised;
  all.insert(headers.installed.begin(), headers.installed.end());
  EXPECT_GT(headers.promised.size(), 20u);
  EXPECT_GT(headers.installed.size(), 20u);
  for (const std::string& header : all) {
    ASSERT_TRUE(Tree().contains(header)) << header << " is listed but missing";
    for (const std::string& include : IncludesOf(header)) {
      if (!include.starts_with("rasterkit/")) continue;
      EXPECT_TRUE(all.contains(include)) << header << " needs " << include;
    }
  }
}

TEST(InstalledHeadersTest, NoneIsBothPromisedAndMerelyInstalled) {
  const HeaderLists headers = AllHeaders();
  for (const std::string& header : headers.promised)
    EXPECT_FALSE(headers.installed.contains(header)) << header;
}

TEST(UmbrellasTest, HoldThePromisedHeadersOfTheirRoom) {
  std::map<std::string, Names> promised;
  for (const std::string& header : AllHeaders().promised) promised[RoomOf(header)].insert(header);
  for (const auto& [room, headers] : promised) {
    ASSERT_TRUE(Tree().contains(room + ".h")) << room;
    EXPECT_EQ(IncludesOf(room + ".h"), headers) << room;
  }
  for (const auto& [path, includes] : Tree()) {
    const bool isUmbrella = path.starts_with("rasterkit/") && path.rfind('/') == 9;
    if (!isUmbrella || path == "rasterkit/rasterkit.h") continue;
    EXPECT_TRUE(promised.contains(path.substr(0, path.size() - 2)))
        << path << " stands for no room that promises a header";
  }
}

TEST(UmbrellasTest, TheFrontHoldsEveryRoomWithoutQt) {
  Names rooms;
  for (const std::string& header : AllHeaders().promised) rooms.insert(RoomOf(header) + ".h");
  rooms.erase("rasterkit/qt.h");
  rooms.erase("rasterkit/dialogs.h");
  EXPECT_EQ(IncludesOf("rasterkit/rasterkit.h"), rooms);
}

TEST(ParseHeaderListsTest, ReadsBothLists) {
  const auto parse = [](const char* text) {
    std::istringstream list(text);
    return ParseHeaderLists(list);
  };
  const HeaderLists both =
      parse("rasterkit_room(\n  PROMISED a.h b.h\n  c.h\n  INSTALLED d.h\n  SOURCES a.cpp)\n");
  EXPECT_THAT(both.promised, ElementsAre("a.h", "b.h", "c.h"));
  EXPECT_THAT(both.installed, ElementsAre("d.h"));
  EXPECT_THAT(parse("rasterkit_room(PROMISED a.h)\nother(d.h)").promised, ElementsAre("a.h"));
  EXPECT_THAT(parse("rasterkit_dialogs_room(\n  HEADERS a.h\n  INSTALLED b.h)").installed,
              ElementsAre("b.h"));
  EXPECT_THAT(parse("rasterkit_room()\n").promised, IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
