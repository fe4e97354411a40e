#include "tests/pictures/recipes/recipe_schema.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/runtime/errors.h>

#include "tests/pictures/recipes/every_step.h"
#include "tests/support/temp_folder.h"

#include <nlohmann/json.hpp>

/// docs/recipe.schema.json and the reader of recipes say the same.
namespace rasterkit {
namespace {

using nlohmann::json;
using testing::HasSubstr;

std::string SchemaText() {
  return test::ReadFile(RASTERKIT_SOURCE "/docs/recipe.schema.json");
}

std::string FaultOf(const json& recipe) {
  try {
    ReadRecipe(recipe.dump());
    return {};
  } catch (const FormatError& error) {
    return error.Reason();
  }
}

/// What a value lacks besides: relations that a schema does not state.
bool IsRelation(const std::string& fault) {
  return fault.find("it must be greater than ") != std::string::npos ||
         fault.find("in map units it must be") != std::string::npos ||
         fault.find("a side has at most 1000000 pixels") != std::string::npos ||
         fault.find("width or height must be stated") != std::string::npos ||
         fault.find("a fixed stretch needs") != std::string::npos;
}

/// A value that the schema of a key allows.
json Sample(const json& schema);

json SampleObject(const json& schema) {
  json object = json::object();
  for (const json& key : schema.value("required", json::array())) {
    object[key.get<std::string>()] = Sample(schema["properties"][key.get<std::string>()]);
  }
  return object;
}

json Sample(const json& schema) {
  if (schema.contains("const")) return schema["const"];
  if (schema.contains("enum")) return schema["enum"].front();
  if (schema.contains("oneOf")) return Sample(schema["oneOf"].front());
  const std::string type = schema.at("type");
  if (type == "object") return SampleObject(schema);
  if (type == "array") return json::array({Sample(schema["items"])});
  if (type == "boolean") return true;
  if (type == "integer" || type == "number") return schema["minimum"];
  const std::string pattern = schema["pattern"];
  return pattern.starts_with("^#") ? "#A0b1C2" : "text";
}

/// Changes one key of an object inside of a recipe, and looks at what the reader says.
class KeyWalk {
 public:
  KeyWalk(json recipe, json::json_pointer object)
      : recipe_(std::move(recipe)), object_(std::move(object)) {}

  void Walk(const json& schema) {
    ASSERT_TRUE(Accepts()) << recipe_ << "\n" << FaultOf(recipe_);
    recipe_[object_]["quite_unknown"] = 1;
    EXPECT_THAT(FaultOf(recipe_), HasSubstr("/quite_unknown: unknown key"));
    recipe_[object_].erase("quite_unknown");
    for (const auto& [key, of] : schema["properties"].items()) {
      SCOPED_TRACE(object_.to_string() + "/" + key);
      const json before = recipe_[object_];
      WalkValue(object_ / key, of);
      const json& required = schema.value("required", json::array());
      const bool isRequired = std::find(required.begin(), required.end(), key) != required.end();
      recipe_[object_] = before;
      recipe_[object_].erase(key);
      if (isRequired) {
        EXPECT_THAT(FaultOf(recipe_), HasSubstr("the key " + key + " is missing"));
      } else {
        EXPECT_TRUE(Accepts()) << FaultOf(recipe_);
      }
      recipe_[object_] = before;
      ++walked;
    }
  }

  int walked = 0;

 private:
  bool Accepts() const {
    const std::string fault = FaultOf(recipe_);
    return fault.empty() || IsRelation(fault);
  }

  void Expect(const json::json_pointer& place, const json& value, bool isAllowed) {
    recipe_[place] = value;
    EXPECT_EQ(Accepts(), isAllowed) << value << ": " << FaultOf(recipe_);
  }

  void WalkValue(const json::json_pointer& place, const json& schema) {
    Expect(place, Sample(schema), true);
    Expect(place, nullptr, false);
    Expect(place, json::array({json::array()}), false);
    if (schema.contains("const")) return Expect(place, "other", false);
    if (schema.contains("enum")) {
      for (const json& choice : schema["enum"]) Expect(place, choice, true);
      Expect(place, "other", false);
      return Expect(place, 7, false);
    }
    if (schema.contains("oneOf")) {
      for (const json& choice : schema["oneOf"]) Expect(place, Sample(choice), true);
      WalkRange(place, schema["oneOf"].front());
      return Expect(place, "other", false);
    }
    const std::string type = schema["type"];
    if (type == "integer" || type == "number") return WalkRange(place, schema);
    if (type == "object") {
      recipe_[place] = Sample(schema);
      KeyWalk inside(recipe_, place);
      inside.Walk(schema);
      walked += inside.walked;
      return Expect(place, 1, false);
    }
    if (type == "array") return WalkList(place, schema);
    if (type == "boolean") {
      Expect(place, false, true);
      return Expect(place, 0, false);
    }
    Expect(place, 1, false);
    Expect(place, std::string("a\0b", 3), false);
    const std::string pattern = schema["pattern"];
    if (pattern.starts_with("^#")) {
      for (const char* text : {"white", "#12345", "#1234567", "#12345G", "123456", "#-12345"}) {
        Expect(place, text, false);
      }
    } else if (pattern.find("64") != std::string::npos) {
      Expect(place, std::string(64, 'z'), true);
      Expect(place, "Slot_9-a", true);
      for (const std::string& text : {std::string(), std::string(65, 'z'), std::string("a=b"),
                                      std::string("ä"), std::string("a b")}) {
        Expect(place, text, false);
      }
    } else {
      Expect(place, "", true);
    }
  }

  void WalkRange(const json::json_pointer& place, const json& schema) {
    const double least = schema["minimum"], most = schema["maximum"];
    Expect(place, schema["minimum"], true);
    Expect(place, schema["maximum"], true);
    Expect(place, std::nextafter(least, -INFINITY), false);
    Expect(place, std::nextafter(most, INFINITY), false);
    Expect(place, "1", false);
    const bool isWhole = schema["type"] == "integer";
    const double between = least + 0.5;
    Expect(place, between, !isWhole);
    Expect(place, std::floor(between), true);
  }

  void WalkList(const json::json_pointer& place, const json& schema) {
    Expect(place, json::array(), true);
    Expect(place, json::object(), false);
    Expect(place, json::array({Sample(schema["items"]), nullptr}), false);
    if (schema["items"]["type"] != "object") return;
    recipe_[place] = json::array({Sample(schema["items"])});
    KeyWalk inside(recipe_, place / 0);
    inside.Walk(schema["items"]);
    walked += inside.walked;
  }

  json recipe_;
  const json::json_pointer object_;
};

TEST(RecipeSchemaTest, IsThatOfTheReader) {
  EXPECT_EQ(SchemaText(), test::RecipeSchema()) << "make_recipe_schema prints it";
}

TEST(RecipeSchemaTest, EachKeyIsReadAsItSays) {
  const json schema = json::parse(SchemaText());
  const json empty = {{"schema", 1}, {"steps", json::array()}, {"save", json::object()}};
  int walked = 0;
  for (const auto& [name, step] : schema["$defs"].items()) {
    SCOPED_TRACE(name);
    json recipe = empty;
    recipe["steps"] = json::array({SampleObject(step)});
    KeyWalk walk(recipe, json::json_pointer("/steps/0"));
    walk.Walk(step);
    walked += walk.walked;
  }
  EXPECT_GT(walked, 120);
  EXPECT_GT(schema["$defs"].size(), 20u);
  KeyWalk(empty, json::json_pointer("/save")).Walk(schema["properties"]["save"]);
}

TEST(RecipeSchemaTest, ListsEachStep) {
  const json schema = json::parse(SchemaText());
  const json& choices = schema["properties"]["steps"]["items"]["oneOf"];
  EXPECT_EQ(choices.size(), schema["$defs"].size());
  for (const auto& [name, step] : schema["$defs"].items()) {
    EXPECT_EQ(step["properties"]["step"]["const"], name);
    EXPECT_NE(std::find(choices.begin(), choices.end(), json{{"$ref", "#/$defs/" + name}}),
              choices.end());
  }
}

/// Damages a recipe at a random place.
json Damaged(const json& recipe, std::mt19937& random) {
  const json flat = recipe.flatten();
  auto entry = flat.begin();
  std::advance(entry, static_cast<std::ptrdiff_t>(random() % flat.size()));
  json damaged = recipe;
  const json::json_pointer place(entry.key());
  switch (random() % 4) {
    case 0:
      damaged[place] = json::array({1});
      break;
    case 1:
      damaged[place] = -1e301;
      break;
    case 2:
      damaged[place] = "?";
      break;
    default:
      damaged[place.parent_pointer()]["unknown"] = 1;
  }
  return damaged;
}

/// A validator that others wrote says the same of recipes as the reader.
TEST(RecipeSchemaTest, AgreesForAPeer) {
  if (std::system("python3 -c 'import jsonschema' >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "python3-jsonschema is not installed";
  }
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::vector<json> recipes;
  for (int i = 0; i < 200; ++i) {
    recipes.push_back(json::parse(WriteRecipe(test::RandomRecipe(random))));
    // Lists and texts have no keys.
    try {
      recipes.push_back(Damaged(recipes.back(), random));
    } catch (const json::exception&) {
    }
  }
  const test::TempFolder folder;
  std::string lines;
  for (const json& recipe : recipes) lines += recipe.dump() + "\n";
  folder.Write("recipes", lines);
  folder.Write("check.py", R"(import json, sys
from jsonschema import Draft202012Validator
schema = json.load(open(sys.argv[1]))
Draft202012Validator.check_schema(schema)
validator = Draft202012Validator(schema)
for line in open(sys.argv[2], encoding="utf-8", newline="\n"):
    print(1 if validator.is_valid(json.loads(line)) else 0)
)");
  const std::string command = "python3 '" + (folder / "check.py") +
                              "' '" RASTERKIT_SOURCE "/docs/recipe.schema.json' '" +
                              (folder / "recipes") + "' >'" + (folder / "answers") + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  std::istringstream answers(test::ReadFile(folder / "answers"));
  int valid = 0, invalid = 0;
  for (const json& recipe : recipes) {
    int answer = -1;
    ASSERT_TRUE(answers >> answer);
    const std::string fault = FaultOf(recipe);
    EXPECT_EQ(answer, fault.empty() || IsRelation(fault) ? 1 : 0) << fault << "\n" << recipe;
    (answer == 1 ? valid : invalid) += 1;
  }
  EXPECT_GE(valid, 200);
  EXPECT_GE(invalid, 50);
}

}  // namespace
}  // namespace rasterkit
