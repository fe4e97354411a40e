#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/doors/source_tree.h"

namespace rasterkit::test {
namespace {

// Parts of the library, each with an umbrella header.
constexpr const char* kParts[] = {"host",    "bitmaptools", "jpegexif", "tifftobmp",
                                  "package", "qt",          "dialogs"};

/// The names between PUBLIC_HEADERS and the next keyword of a room's list.
std::set<std::string> ParsePublicHeaders(std::istream& list) {
  std::set<std::string> headers;
  std::string word;
  while (list >> word && !word.ends_with("PUBLIC_HEADERS")) {
  }
  while (list >> word && !word.starts_with("SOURCES") && !word.starts_with("HEADERS")) {
    headers.insert(word.substr(0, word.find(')')));
    if (word.ends_with(')')) break;
  }
  return headers;
}

/// What the rooms below `folder` offer, as include names.
std::set<std::string> PublicHeaders(const std::string& folder) {
  const std::filesystem::path root = RASTERKIT_SOURCE_TREE;
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
    if (entry.path().filename() != "CMakeLists.txt") continue;
    const std::string room = entry.path().parent_path().lexically_relative(root).generic_string();
    std::ifstream list(entry.path());
    for (const std::string& header : ParsePublicHeaders(list)) {
      names.insert("rasterkit/" + room + "/" + header);
    }
  }
  return names;
}

TEST(PublicHeadersTest, IncludeOnlyPublicHeaders) {
  const SourceTree tree = ReadSourceTree(RASTERKIT_SOURCE_TREE);
  std::set<std::string> installed;
  for (const char* part : kParts) installed.merge(PublicHeaders(part));
  for (const std::string& header : installed) {
    const std::string path = header.substr(std::string("rasterkit/").size());
    ASSERT_TRUE(tree.contains(path)) << path << " is listed but missing";
    for (const Include& include : tree.at(path)) {
      if (!include.name.starts_with("rasterkit/")) continue;
      EXPECT_TRUE(installed.contains(include.name)) << path << " needs " << include.name;
    }
  }
}

TEST(ParsePublicHeadersTest, ReadsARoomsList) {
  const auto parse = [](const char* text) {
    std::istringstream list(text);
    return ParsePublicHeaders(list);
  };
  EXPECT_THAT(parse("rasterkit_room(\n  PUBLIC_HEADERS a.h b.h\n  c.h\n  SOURCES a.cpp)\n"),
              testing::ElementsAre("a.h", "b.h", "c.h"));
  EXPECT_THAT(parse("rasterkit_room(PUBLIC_HEADERS a.h)\nother(d.h)"), testing::ElementsAre("a.h"));
  EXPECT_THAT(parse("rasterkit_room()\n"), testing::IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
