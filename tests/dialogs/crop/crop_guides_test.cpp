#include <gtest/gtest.h>

#include <rasterkit/dialogs/crop/crop_guides.h>

namespace rasterkit {
namespace {

TEST(GuideLines, Thirds_Should_DivideBothSides) {
  const auto lines = GuideLines(CropGuide::thirds, {30, 60, 90, 150});
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_DOUBLE_EQ(lines[0].x1, 50);
  EXPECT_DOUBLE_EQ(lines[0].x2, 50);
  EXPECT_DOUBLE_EQ(lines[0].y1, 60);
  EXPECT_DOUBLE_EQ(lines[0].y2, 150);
  EXPECT_DOUBLE_EQ(lines[1].x1, 70);
  EXPECT_DOUBLE_EQ(lines[2].y1, 90);
  EXPECT_DOUBLE_EQ(lines[3].y2, 120);
  EXPECT_DOUBLE_EQ(lines[3].x1, 30);
  EXPECT_DOUBLE_EQ(lines[3].x2, 90);
}

TEST(GuideLines, Center_Should_BeACross) {
  const auto lines = GuideLines(CropGuide::center, {0, 0, 10, 20});
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_DOUBLE_EQ(lines[0].x1, 5);
  EXPECT_DOUBLE_EQ(lines[1].y1, 10);
}

TEST(GuideLines, None_Should_BeNone) {
  EXPECT_TRUE(GuideLines(CropGuide::none, {0, 0, 10, 20}).empty());
}

}  // namespace
}  // namespace rasterkit
