#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/pictures/recipes/recipe_text.h>

#include "tests/support/temp_folder.h"

#include <nlohmann/json.hpp>

/// docs/recipes.md says what the reader of recipes does.
namespace rasterkit {
namespace {

using nlohmann::json;

std::string Page() {
  return test::ReadFile(RASTERKIT_SOURCE "/docs/recipes.md");
}

json Schema() {
  return json::parse(test::ReadFile(RASTERKIT_SOURCE "/docs/recipe.schema.json"));
}

std::string Section(const std::string& page, const std::string& title) {
  const size_t begin = page.find("\n## " + title + "\n");
  const size_t end = page.find("\n## ", begin + 1);
  return page.substr(begin, end - begin);
}

/// What stands in code marks.
std::set<std::string> CodeIn(const std::string& text) {
  static const std::regex kCode("`([^`]+)`");
  std::set<std::string> words;
  for (std::sregex_iterator it(text.begin(), text.end(), kCode), end; it != end; ++it) {
    words.insert(it->str(1));
  }
  return words;
}

/// The rows of a table by the word in their first column.
std::map<std::string, std::string> Rows(const std::string& text) {
  static const std::regex kRow("\n\\| `([a-z_-]+)` (\\|[^\n]*)");
  std::map<std::string, std::string> rows;
  for (std::sregex_iterator it(text.begin(), text.end(), kRow), end; it != end; ++it) {
    rows.insert_or_assign(it->str(1), it->str(2));
  }
  return rows;
}

/// The words that a key may have.
std::vector<std::string> WordsOf(const json& schema) {
  std::vector<std::string> words;
  for (const json& word : schema.value("enum", json::array())) {
    if (word.is_string()) words.push_back(word);
  }
  return words;
}

TEST(RecipesPageTest, TheExampleIsARecipe) {
  const std::string page = Page();
  const size_t begin = page.find("```json\n") + 8;
  const Recipe recipe = ReadRecipe(page.substr(begin, page.find("```", begin) - begin));
  EXPECT_EQ(recipe.steps.size(), 4u);
  EXPECT_EQ(recipe.save.quality, 85);
}

TEST(RecipesPageTest, EachStepHasARowWithItsKeys) {
  const auto rows = Rows(Section(Page(), "Steps"));
  const json schema = Schema();
  EXPECT_EQ(rows.size(), schema["$defs"].size());
  for (const auto& [name, step] : schema["$defs"].items()) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(rows.contains(name));
    const std::set<std::string> code = CodeIn(rows.at(name));
    const bool isAsAbove = rows.at(name).find("as above") != std::string::npos;
    for (const auto& [key, of] : step["properties"].items()) {
      if (key == "step" || key == "revision") continue;
      EXPECT_TRUE(code.contains(key)) << key;
      const std::string& row = rows.at(name);
      const json& required = step["required"];
      const bool isRequired = std::find(required.begin(), required.end(), key) != required.end();
      const bool isSlanted = row.find("*`" + key + "`*") != std::string::npos;
      EXPECT_EQ(isSlanted, !isRequired) << key;
      if (isAsAbove || key == "stretch" || key == "unit") continue;
      for (const std::string& word : WordsOf(of)) EXPECT_TRUE(code.contains(word)) << word;
    }
  }
}

TEST(RecipesPageTest, EachKeyOfSavingHasARow) {
  const auto rows = Rows(Section(Page(), "Saving"));
  const json save = Schema()["properties"]["save"];
  EXPECT_EQ(rows.size(), save["properties"].size());
  for (const auto& [key, of] : save["properties"].items()) {
    ASSERT_TRUE(rows.contains(key)) << key;
    const std::set<std::string> code = CodeIn(rows.at(key));
    for (const std::string& word : WordsOf(of)) EXPECT_TRUE(code.contains(word)) << word;
  }
}

TEST(RecipesPageTest, EachKeyOfARecipeHasARow) {
  const auto rows = Rows(Section(Page(), "Example"));
  const json schema = Schema();
  for (const auto& [key, of] : schema["properties"].items()) {
    EXPECT_TRUE(rows.contains(key)) << key;
  }
}

TEST(RecipesPageTest, EachUnitHasARow) {
  const auto rows = Rows(Section(Page(), "Coordinates and rounding"));
  const json units = Schema()["$defs"]["crop"]["properties"]["unit"]["enum"];
  EXPECT_EQ(rows.size(), units.size());
  for (const json& unit : units) EXPECT_TRUE(rows.contains(unit.get<std::string>())) << unit;
}

}  // namespace
}  // namespace rasterkit
