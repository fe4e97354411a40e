// What is installed: each header is promised, and then in the umbrella of its room, or merely
// installed, and then in no umbrella.

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/doors/source_tree.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::set<std::string>;

/// What the list of one room offers.
struct RoomHeaders {
  Names promised, installed;
};

/// The names behind PROMISED and INSTALLED, each up to the next keyword.
RoomHeaders ParseRoom(std::istream& list) {
  RoomHeaders headers;
  Names* current = nullptr;
  for (std::string word; list >> word;) {
    // The first keyword may stand right behind the bracket.
    const std::string keyword = word.substr(word.find('(') + 1);
    if (keyword == "PROMISED") {
      current = &headers.promised;
    } else if (keyword == "INSTALLED") {
      current = &headers.installed;
    } else if (word.find(".h") == std::string::npos) {
      current = nullptr;
    } else if (current != nullptr) {
      current->insert(word.substr(0, word.find(')')));
      if (word.ends_with(')')) current = nullptr;
    }
  }
  return headers;
}

/// Of all rooms, as include names.
RoomHeaders AllHeaders() {
  const std::filesystem::path root = RASTERKIT_SOURCE_TREE;
  RoomHeaders all;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root / "rasterkit")) {
    if (entry.path().filename() != "CMakeLists.txt") continue;
    const std::string room = entry.path().parent_path().lexically_relative(root).generic_string();
    std::ifstream list(entry.path());
    const RoomHeaders headers = ParseRoom(list);
    for (const std::string& name : headers.promised) all.promised.insert(room + "/" + name);
    for (const std::string& name : headers.installed) all.installed.insert(room + "/" + name);
  }
  return all;
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
  const RoomHeaders headers = AllHeaders();
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
  const RoomHeaders headers = AllHeaders();
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

TEST(ParseRoomTest, ReadsBothLists) {
  const auto parse = [](const char* text) {
    std::istringstream list(text);
    return ParseRoom(list);
  };
  const RoomHeaders both =
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
