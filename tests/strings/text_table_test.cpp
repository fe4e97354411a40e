#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

namespace fs = std::filesystem;

struct Constant {
  std::string name, text;
};

std::string ReadText(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The value of string literals that stand side by side.
std::string ValueOf(const std::string& literals) {
  std::string value;
  bool isInside = false;
  for (size_t i = 0; i < literals.size(); ++i) {
    const char c = literals[i];
    if (c == '"') {
      isInside = !isInside;
    } else if (isInside && c == '\\') {
      const char escaped = literals[++i];
      value += escaped == 'n' ? '\n' : escaped == 'r' ? '\r' : escaped;
    } else if (isInside) {
      value += c;
    }
  }
  return value;
}

/// The constants in the source of a header, regardless of their type.
std::vector<Constant> ConstantsIn(const std::string& source) {
  static const std::regex pattern(
      R"re(\b(rs[A-Z0-9]\w*)\s*[={(]\s*(?:[\w:]+\s*[{(]\s*)?((?:"(?:[^"\\]|\\.)*"\s*)+))re");
  std::vector<Constant> constants;
  for (std::sregex_iterator match(source.begin(), source.end(), pattern), end; match != end;
       ++match)
    constants.push_back({(*match)[1], ValueOf((*match)[2])});
  return constants;
}

/// Of all headers in the room, listed in the build or not.
std::vector<Constant> AllConstants() {
  std::vector<Constant> all;
  for (const auto& entry : fs::directory_iterator(RASTERKIT_SOURCE_TREE "/rasterkit/strings")) {
    if (entry.path().extension() != ".h") continue;
    for (Constant& constant : ConstantsIn(ReadText(entry.path())))
      all.push_back(std::move(constant));
  }
  return all;
}

TEST(TextTable, Should_HoldEveryConstantOnce) {
  std::multiset<std::string> expected;
  for (const Constant& constant : AllConstants()) expected.insert(constant.text);
  ASSERT_THAT(expected, testing::Contains("Palette überschritten. Benötige 24bit Farbtiefe."));
  const auto keys = ResourceStringKeys();
  EXPECT_EQ(std::multiset<std::string>(keys.begin(), keys.end()), expected);
}

TEST(TextTable, Should_HoldNoTextTwice) {
  std::set<std::string_view> seen;
  for (const std::string_view key : ResourceStringKeys())
    EXPECT_TRUE(seen.insert(key).second) << key;
}

// The reader of the headers.

TEST(ConstantsIn, Should_ReadLiteralsOfSeveralLinesAndEscapes) {
  const auto constants = ConstantsIn(
      "inline constexpr std::string_view rsOne = \"a\\r\\\"%s\\\"\\n\";\n"
      "constexpr auto\n    rsTwo =\n    \"b \"\n    \"c\";\nint other = 3;  // rsNone\n"
      "inline constexpr auto rsThree = std::string_view(\"d;\");\n");
  ASSERT_EQ(constants.size(), 3u);
  EXPECT_EQ(constants[0].name, "rsOne");
  EXPECT_EQ(constants[0].text, "a\r\"%s\"\n");
  EXPECT_EQ(constants[1].name, "rsTwo");
  EXPECT_EQ(constants[1].text, "b c");
  EXPECT_EQ(constants[2].name, "rsThree");
  EXPECT_EQ(constants[2].text, "d;");
}

}  // namespace
}  // namespace rasterkit
