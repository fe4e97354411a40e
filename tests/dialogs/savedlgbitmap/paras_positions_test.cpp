#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgbitmap/paras_positions.h>

namespace rasterkit {
namespace {

TEST(ParasPositionsTest, GraphicTypes_Should_HaveTheirEntries) {
  EXPECT_EQ(GraphicTypeAt(0), 1);
  EXPECT_EQ(GraphicTypeAt(1), 6);
  EXPECT_EQ(GraphicTypeAt(2), 8);
  EXPECT_EQ(GraphicTypeAt(3), 10);
  for (int position = 0; position < 4; ++position)
    EXPECT_EQ(PositionOfGraphicType(GraphicTypeAt(position)), position);
}

TEST(ParasPositionsTest, OtherPositionsAndTypes_Should_BePng) {
  for (const int position : {-1, 4, 100, INT32_MIN, INT32_MAX})
    EXPECT_EQ(GraphicTypeAt(position), 8) << position;
  for (const int type : {0, 2, 3, 4, 5, 7, 9, 11, -1, INT32_MAX})
    EXPECT_EQ(PositionOfGraphicType(type), 2) << type;
}

TEST(ParasPositionsTest, ColorDepths_Should_HaveTheirEntries) {
  EXPECT_EQ(ColorDepthAt(0), 1);
  EXPECT_EQ(ColorDepthAt(1), 4);
  EXPECT_EQ(ColorDepthAt(2), 8);
  EXPECT_EQ(ColorDepthAt(3), 24);
  for (int position = 0; position < 4; ++position)
    EXPECT_EQ(PositionOfColorDepth(ColorDepthAt(position)), position);
}

TEST(ParasPositionsTest, OtherPositionsAndDepths_Should_BeTrueColor) {
  for (const int position : {-1, 4, INT32_MIN, INT32_MAX})
    EXPECT_EQ(ColorDepthAt(position), 24) << position;
  for (const int bits : {0, 2, 15, 16, 32, -8, INT32_MAX})
    EXPECT_EQ(PositionOfColorDepth(bits), 3) << bits;
}

}  // namespace
}  // namespace rasterkit
