#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

class StringsTest : public testing::Test {
 protected:
  void TearDown() override {
    SetTranslator(nullptr);
    SetCatalogue(nullptr);
  }
};

TEST_F(StringsTest, WithoutTranslator_AKeyIsItsOwnText) {
  EXPECT_EQ(ResourceString(rsAllSupportedFiles), "All supported files");
  EXPECT_EQ(ResourceString(rsBitmapToLargeToRotate), "Bitmap to large to rotate.");
  EXPECT_EQ(ResourceString(rsPaletteExceeded), "Palette überschritten. Benötige 24bit Farbtiefe.");
  EXPECT_EQ(ResourceString("not in the table"), "not in the table");
}

TEST_F(StringsTest, Translator_GivesTheUsersText) {
  SetTranslator([](std::string_view key) {
    return key == rsBitmapToLargeToRotate ? std::string("Zu groß zum Drehen.") : std::string();
  });
  EXPECT_EQ(ResourceString(rsBitmapToLargeToRotate), "Zu groß zum Drehen.");
  EXPECT_EQ(ResourceString(rsAllSupportedFiles), "All supported files") << "no word for it";
  SetTranslator(nullptr);
  EXPECT_EQ(ResourceString(rsBitmapToLargeToRotate), "Bitmap to large to rotate.");
}

TEST_F(StringsTest, Translator_MayReplaceItselfWhileItIsAsked) {
  SetTranslator([text = std::string("first")](std::string_view) {
    SetTranslator(nullptr);
    return text;
  });
  EXPECT_EQ(ResourceString("x"), "first");
  EXPECT_EQ(ResourceString("x"), "x");
}

TEST_F(StringsTest, Catalogue_IsAskedWhereThereIsNoTranslator) {
  SetCatalogue([](std::string_view key) { return key == "OK" ? "gut" : std::string(); });
  EXPECT_EQ(ResourceString("OK"), "gut");
  EXPECT_EQ(ResourceString("Cancel"), "Cancel");
  SetTranslator([](std::string_view key) { return key == "Cancel" ? "non" : std::string(); });
  EXPECT_EQ(ResourceString("OK"), "OK") << "the host's translator has no word, and so no one has";
  EXPECT_EQ(ResourceString("Cancel"), "non");
  SetTranslator(nullptr);
  EXPECT_EQ(ResourceString("OK"), "gut");
  SetCatalogue(nullptr);
  EXPECT_EQ(ResourceString("OK"), "OK");
}

TEST_F(StringsTest, Keys_AreAllListed) {
  EXPECT_THAT(
      ResourceStringKeys(),
      testing::IsSupersetOf({rsAllSupportedFiles, rsBitmapToLargeToRotate, rsPaletteExceeded}));
}

}  // namespace
}  // namespace rasterkit
