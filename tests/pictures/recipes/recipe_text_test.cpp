#include <clocale>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// The reason why a text is no recipe; empty if it is one.
std::string FaultOf(const std::string& text, const RecipeReading& reading = {}) {
  try {
    ReadRecipe(text, reading);
    return {};
  } catch (const FormatError& error) {
    return error.Reason();
  }
}

std::string WithSteps(const std::string& steps) {
  return R"({"schema": 1, "steps": [)" + steps + "]}";
}

std::string FaultOfStep(const std::string& step) {
  return FaultOf(WithSteps(R"({"step": "pdf-white", "revision": 1}, )" + step));
}

TEST(ReadRecipeTest, ReadsTheLeast) {
  const Recipe recipe = ReadRecipe(R"({"schema": 1, "steps": []})");
  EXPECT_TRUE(recipe.steps.empty());
  EXPECT_FALSE(recipe.save.type);
}

TEST(ReadRecipeTest, ReadsStepsAndSaving) {
  const Recipe recipe = ReadRecipe(R"({
    "schema": 1, "made_with": "by hand",
    "steps": [
      {"step": "crop", "revision": 1, "unit": "percent", "left": 1.5, "top": 2, "right": 30,
       "bottom": 40, "outside": "clip"},
      {"step": "mono", "revision": 1, "threshold": "otsu", "dark": "#102030"}],
    "save": {"type": "jpeg", "quality": 80, "sampling": "4:2:2", "metadata": "without-gps"}})");
  EXPECT_EQ(recipe.madeWith, "by hand");
  ASSERT_EQ(recipe.steps.size(), 2u);
  const RecipeCrop crop{LengthUnit::percent, 1.5, 2, 30, 40, Outside::clip};
  EXPECT_EQ(std::get<RecipeCrop>(recipe.steps[0]), crop);
  const auto mono = std::get<MakeMono>(std::get<ChangeStep>(recipe.steps[1]).change);
  EXPECT_FALSE(mono.threshold);
  EXPECT_EQ(mono.dark, RGB(0x10, 0x20, 0x30));
  EXPECT_EQ(mono.light, clWhite);
  EXPECT_EQ(recipe.save.type, PictureType::jpeg);
  EXPECT_EQ(recipe.save.quality, 80);
  EXPECT_EQ(recipe.save.chromaX, 2);
  EXPECT_EQ(recipe.save.chromaY, 1);
  EXPECT_EQ(recipe.save.metadata, RecipeSave::Keep::withoutGps);
}

TEST(ReadRecipeTest, SyntaxIsRefusedByLineAndColumn) {
  EXPECT_THAT(FaultOf(""), StartsWith("line 1, column 1: "));
  EXPECT_THAT(FaultOf("{\n  \"schema\": 1,\n  ]"), StartsWith("line 3, column 3: "));
  EXPECT_THAT(FaultOf("{\n \"\xC3\xA4\xC3\xB6\": x"), StartsWith("line 2, column 8: "));
  EXPECT_THAT(FaultOf("{\"schema\": 1, \"steps\": []} x"), StartsWith("line 1, column 28: "));
  EXPECT_THAT(FaultOf("{\"schema\": 1e999}"), StartsWith("line 1, column 16: number overflow"));
  EXPECT_THAT(FaultOf("{\"made_with\": \"\xFF\"}"), StartsWith("line 1, column 16: "));
  EXPECT_THAT(FaultOf("{\"made_with\": \"\xC3\"}"), StartsWith("line 1, column "));
  EXPECT_THAT(FaultOf("{\n\"made_with\": \"a\nb\"}"), StartsWith("line 2, column 16: "));
  EXPECT_THAT(FaultOf("{\n"), StartsWith("line 2, column 1: unexpected end"));
  EXPECT_THAT(FaultOf("{\"schema\": NaN}"), StartsWith("line 1, column "));
  EXPECT_THAT(FaultOf("{\"schema\": 1, // why\n \"steps\": []}"), StartsWith("line 1, column "));
}

TEST(ReadRecipeTest, ValuesAreRefusedByPath) {
  const std::string combine = R"({"step": "combine", "revision": 1, "slot": "a", "percent": )";
  EXPECT_EQ(FaultOfStep(combine + "300}"), "/steps/1/percent: 300 is above 100");
  EXPECT_EQ(FaultOfStep(combine + "-1}"), "/steps/1/percent: -1 is below 0");
  EXPECT_EQ(FaultOfStep(combine + "1.5}"), "/steps/1/percent: 1.5 is no whole number");
  EXPECT_EQ(FaultOfStep(combine + "\"x\"}"), "/steps/1/percent: \"x\" is no number");
  EXPECT_EQ(FaultOfStep(combine + "1, \"gray\": 1}"), "/steps/1/gray: 1 is neither true nor false");
  EXPECT_EQ(FaultOfStep(combine + "1, \"mode\": \"mix\"}"),
            "/steps/1/mode: \"mix\" is none of auto, key, transparent, shadow, overwrite, "
            "into-white, watermark, grid");
  EXPECT_EQ(FaultOfStep(R"({"step": "opaque", "revision": 1, "background": "white"})"),
            "/steps/1/background: \"white\" is no color such as \"#FF8000\"");
  EXPECT_THAT(FaultOfStep(R"({"step": "palette", "revision": 1, "slot": "a=b"})"),
              StartsWith("/steps/1/slot: \"a=b\" is no name: "));
  EXPECT_EQ(FaultOfStep(R"({"step": "mono", "revision": 1, "threshold": "high"})"),
            "/steps/1/threshold: \"high\" is neither a number nor \"otsu\"");
  EXPECT_EQ(FaultOfStep(R"({"step": "edit", "revision": 1, "set": [{"tag": "Artist"}]})"),
            "/steps/1/set/0: the key value is missing");
  EXPECT_EQ(FaultOfStep(R"({"step": "edit", "revision": 1, "remove": ["a", 1]})"),
            "/steps/1/remove/1: 1 is no text");
  EXPECT_EQ(FaultOfStep(R"({"step": "bits", "revision": 1, "bits": 7})"),
            "/steps/1/bits: 7 is none of 1, 4, 8, 15, 16, 24, 32");
}

TEST(ReadRecipeTest, HugeCoordinatesAreRefused) {
  const auto crop = [](const std::string& right) {
    return FaultOfStep(
        R"({"step": "crop", "revision": 1, "unit": "px", "left": 0, "top": 0, "bottom": 1, )"
        R"("right": )" +
        right + "}");
  };
  EXPECT_EQ(crop("1"), "");
  EXPECT_EQ(crop("1e300"), "/steps/1/right: 1e+300 is above 1000000000000");
  EXPECT_EQ(crop("0"), "/steps/1/right: it must be greater than left");
  EXPECT_EQ(crop("200000000000000000000"), "/steps/1/right: 2e+20 is above 1000000000000");
}

TEST(ReadRecipeTest, HugeSizesAreRefused) {
  const auto resize = [](const std::string& values) {
    return FaultOfStep(R"({"step": "resize", "revision": 1, "unit": )" + values + "}");
  };
  EXPECT_EQ(resize(R"("px", "width": 1000000)"), "");
  EXPECT_EQ(resize(R"("px", "width": 1000001)"),
            "/steps/1/width: a side has at most 1000000 pixels");
  EXPECT_EQ(resize(R"("px", "width": 1, "height": 1e9)"),
            "/steps/1/height: a side has at most 1000000 pixels");
  EXPECT_EQ(resize(R"("percent", "width": 1000001)"), "");
}

TEST(ReadRecipeTest, UnknownThingsAreRefused) {
  EXPECT_EQ(FaultOf(R"({"schema": 1, "steps": [], "note": 1})"),
            "/note: unknown key; the keys here are schema, made_with, as_stored, steps, save");
  EXPECT_EQ(FaultOf(R"({"schema": 2, "note": 1})"),
            "/schema: 2 is not 1, the version of recipes that is known here");
  EXPECT_EQ(FaultOf(R"({"steps": []})"), "/: the key schema is missing");
  EXPECT_EQ(FaultOf(R"({"schema": 1})"), "/: the key steps is missing");
  EXPECT_EQ(FaultOf("[]"), "/: a list is no object");
  EXPECT_EQ(FaultOf(R"({"schema": 1, "steps": {}})"), "/steps: an object is no list");
  EXPECT_THAT(FaultOfStep(R"({"step": "Crop", "revision": 1})"),
              StartsWith("/steps/1/step: \"Crop\" is none of turn, mirror, "));
  EXPECT_EQ(FaultOfStep(R"({"step": "turn", "revision": 1, "quarter/s~": 1})"),
            "/steps/1/quarter~1s~0: unknown key; the keys here are step, revision, quarters");
  EXPECT_EQ(FaultOfStep(R"({"revision": 1})"), "/steps/1: the key step is missing");
  EXPECT_EQ(FaultOfStep("3"), "/steps/1: 3 is no object");
  EXPECT_THAT(FaultOfStep(R"({"step": "resize", "revision": 1, "unit": "map", "width": 1})"),
              StartsWith("/steps/1/unit: \"map\" is none of px, percent, mm"));
  EXPECT_EQ(FaultOf(R"({"schema": 1, "steps": [], "save": {"quality": 0}})"),
            "/save/quality: 0 is below 1");
}

TEST(ReadRecipeTest, KeysThatStandTwiceAreRefused) {
  EXPECT_EQ(FaultOf(R"({"schema": 1, "schema": 1, "steps": []})"),
            "/: the key \"schema\" stands twice");
  EXPECT_EQ(FaultOfStep(R"({"step": "turn", "revision": 1, "step": "turn"})"),
            "/steps/1: the key \"step\" stands twice");
  EXPECT_EQ(FaultOfStep(R"({"step": "edit", "revision": 1, "gps": {"a": 1, "a": 2}})"),
            "/steps/1/gps: the key \"a\" stands twice");
}

TEST(ReadRecipeTest, OtherRevisionsAreRefusedUnlessAllowed) {
  const std::string text = WithSteps(R"({"step": "turn", "revision": 2, "quarters": 1})");
  EXPECT_EQ(FaultOf(text),
            "/steps/0/revision: the step \"turn\" has revision 1 here, not 2: its result may "
            "differ");
  EXPECT_EQ(FaultOf(text, {.anyRevision = true}), "");
  EXPECT_EQ(FaultOf(WithSteps(R"({"step": "turn", "quarters": 1})")),
            "/steps/0: the key revision is missing");
}

TEST(ReadRecipeTest, LimitsAreKept) {
  std::string steps = R"({"step": "pdf-white", "revision": 1})";
  for (size_t i = 1; i < kMostRecipeSteps; ++i) steps += R"(,{"step":"pdf-white","revision":1})";
  EXPECT_EQ(FaultOf(WithSteps(steps)), "");
  EXPECT_EQ(FaultOf(WithSteps(steps + R"(,{"step":"pdf-white","revision":1})")),
            "/steps: 1001 steps are more than 1000");
  std::string text = WithSteps("");
  text += std::string(kMostRecipeBytes - text.size(), ' ');
  EXPECT_EQ(FaultOf(text), "");
  EXPECT_EQ(FaultOf(text + " "), "a recipe has at most 1048576 bytes, not 1048577");
  EXPECT_THAT(FaultOf(std::string(1000, '[')), HasSubstr("nested deeper than 8"));
}

TEST(WriteRecipeTest, IsReadable) {
  Recipe recipe;
  recipe.madeWith = "rasterkit";
  recipe.steps = {RecipeCrop{LengthUnit::millimeters, 0.1, 2, 30, 40.25},
                  ChangeStep{AdjustColors{.contrast = 12}}};
  recipe.save.type = PictureType::png;
  EXPECT_EQ(WriteRecipe(recipe), R"({
  "schema": 1,
  "made_with": "rasterkit",
  "steps": [
    {
      "step": "crop",
      "revision": 1,
      "unit": "mm",
      "left": 0.1,
      "top": 2,
      "right": 30,
      "bottom": 40.25
    },
    {
      "step": "adjust",
      "revision": 1,
      "contrast": 12
    }
  ],
  "save": {
    "type": "png"
  }
}
)");
}

TEST(WriteRecipeTest, StatesThatThePictureStaysAsStored) {
  Recipe recipe;
  EXPECT_THAT(WriteRecipe(recipe), Not(HasSubstr("as_stored")));
  recipe.isAsStored = true;
  EXPECT_THAT(WriteRecipe(recipe), HasSubstr("\"as_stored\": true"));
  EXPECT_TRUE(ReadRecipe(WriteRecipe(recipe)).isAsStored);
  EXPECT_EQ(FaultOf(R"({"schema": 1, "steps": [], "as_stored": 1})"),
            "/as_stored: 1 is neither true nor false");
}

std::string WritingFault(const RecipeStep& step) {
  try {
    WriteRecipe({"", {step}, {}});
    return {};
  } catch (const RangeError& error) {
    return error.Reason();
  }
}

TEST(WriteRecipeTest, RefusesWhatCouldNotBeRead) {
  EXPECT_EQ(WritingFault(TurnStep{7}), "/steps/0/quarters: 7 is above 3");
  EXPECT_EQ(WritingFault(RotateStep{std::nan(""), {}}),
            "/steps/0/degrees: the number is not finite");
  EXPECT_EQ(WritingFault(RecipeResize{LengthUnit::pixels, 1000001, 1}),
            "/steps/0/width: a side has at most 1000000 pixels");
  EXPECT_EQ(WritingFault(RecipeCrop{}), "/steps/0/right: it must be greater than left");
  EXPECT_THAT(WritingFault(RecipePalette{"a b"}), StartsWith("/steps/0/slot: the slot: a name"));
  EXPECT_THAT(WritingFault(ChangeStep{PaintTransparency{-16777201}}),
              StartsWith("/steps/0/background: a color of the system"));
  MetadataEdit edit;
  edit.set = {{"Artist", "\xFF"}};
  EXPECT_THAT(WritingFault(EditStep{edit}), StartsWith("/steps/0/set/0/value: the text is no"));
  for (const std::string& madeWith : {std::string("\xFF"), std::string("a\0b", 3)}) {
    try {
      WriteRecipe({madeWith, {}, {}});
      FAIL() << "no reader takes this";
    } catch (const RangeError& error) {
      EXPECT_EQ(error.Reason(), "/made_with: the text is no UTF-8, or has a zero in it");
    }
  }
}

TEST(WriteRecipeTest, KnowsNoLocale) {
  const std::string old = std::setlocale(LC_ALL, nullptr);
  if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) GTEST_SKIP() << "no German locale here";
  const Recipe recipe{"", {RotateStep{1234.5, {}}}, {}};
  const std::string text = WriteRecipe(recipe);
  EXPECT_THAT(text, HasSubstr("\"degrees\": 1234.5"));
  EXPECT_EQ(std::get<RotateStep>(ReadRecipe(text).steps[0]).degrees, 1234.5);
  std::setlocale(LC_ALL, old.c_str());
}

}  // namespace
}  // namespace rasterkit
