#include <cmath>
#include <cstring>
#include <filesystem>

#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/placement/map_window.h>
#include <rasterkit/placement/side_files.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/temp_folder.h"

/// The position of a picture follows each step to the pixel.
namespace rasterkit {
namespace {

using test::TempFolder;

/// Each pixel of the picture has a color of its own.
Raster NumberedRaster(int width, int height) {
  Raster rows(pf24bit, width, height);
  for (int y = 0; y < height; ++y) {
    std::memset(rows.Row(y), 0, rows.Stride());
    for (int x = 0; x < width; ++x) {
      const int number = y * width + x + 1;
      rows.Row(y)[static_cast<size_t>(3 * x)] = static_cast<uint8_t>(number >> 8);
      rows.Row(y)[static_cast<size_t>(3 * x + 1)] = static_cast<uint8_t>(number);
    }
  }
  return rows;
}

/// A picture with a world file.
Picture Placed(const TempFolder& folder, int width, int height, const Affine& affine) {
  const std::string file = folder / "placed.png";
  Picture::Of(std::make_unique<TBitmap>(NumberedRaster(width, height))).Save(file);
  folder.Write("placed.pgw", WorldFileText(affine));
  return Picture::Open(file);
}

/// The map of the source is its pixel indexes, so a position names the source's pixel.
void ExpectPixelsWhereThePositionSays(const Picture& picture, int width) {
  const std::optional<Affine> toOld = picture.GetPlacement().affine;
  ASSERT_TRUE(toOld.has_value());
  const auto bitmap = picture.Bitmap();
  int found = 0;
  for (int y = 0; y < bitmap->Height(); ++y) {
    for (int x = 0; x < bitmap->Width(); ++x) {
      const TColor color = bitmap->PixelColor(x, y);
      if (color == clWhite) continue;
      const int number = (color >> 16 & 255) << 8 | (color >> 8 & 255);
      ASSERT_GT(number, 0);
      ++found;
      const MapPoint old = toOld->At(x, y);
      // The nearest pixel lies at most half a pixel away.
      EXPECT_LE(std::abs(old.x - (number - 1) % width), 0.5 + 1e-9) << x << "," << y;
      EXPECT_LE(std::abs(old.y - (number - 1) / width), 0.5 + 1e-9) << x << "," << y;
    }
  }
  EXPECT_GT(found, bitmap->Width() * bitmap->Height() / 4);
}

TEST(PicturePosition, FollowsThePixelsThatTheKernelsTake) {
  const std::vector<Step> steps = {TurnStep{1},
                                   TurnStep{2},
                                   TurnStep{3},
                                   MirrorStep{MirrorAxis::leftRight},
                                   MirrorStep{MirrorAxis::topBottom},
                                   CropStep{3, 2, 20, 15},
                                   RotateStep{10, {}},
                                   RotateStep{89.7, {}},
                                   RotateStep{90.3, {}},
                                   RotateStep{17.3, {}},
                                   RotateStep{217.3, {}},
                                   RotateStep{-60, {}},
                                   ResizeStep{60, 50, {Filter::nearest}},
                                   ResizeStep{17, 9, {Filter::nearest}}};
  const TempFolder folder;
  for (size_t i = 0; i < steps.size(); ++i) {
    for (const auto& [width, height] : {std::pair(31, 22), std::pair(30, 23), std::pair(31, 23)}) {
      SCOPED_TRACE(std::to_string(i) + ": " + std::to_string(width) + " x " +
                   std::to_string(height));
      Picture picture = Placed(folder, width, height, Affine());
      picture.Apply(steps[i]);
      ExpectPixelsWhereThePositionSays(picture, width);
      picture.Turn(1).Crop(CropStep{1, 1, 7, 8});
      const std::optional<Affine> toOld = picture.GetPlacement().affine;
      ASSERT_TRUE(toOld.has_value());
    }
  }
}

TEST(PicturePosition, IsWrittenBesideTheOutputAndInItsTags) {
  const TempFolder folder;
  const Affine map{0.5, 0, 0, -0.5, 4500000.25, 5400000.75};
  Picture picture = Placed(folder, 31, 22, map);
  picture.Rotate(17.3);
  const Affine expected = *picture.GetPlacement().affine;
  for (const char* name : {"out.tif", "out.png", "out.jpg", "out.bmp"}) {
    SCOPED_TRACE(name);
    picture.Save(folder / name);
    const Picture written = Picture::Open(folder / name);
    ASSERT_TRUE(written.GetPlacement().affine.has_value());
    const Affine& affine = *written.GetPlacement().affine;
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(written.Width(), written.Height())}) {
      EXPECT_NEAR(affine.At(x, y).x, expected.At(x, y).x, 1e-7);
      EXPECT_NEAR(affine.At(x, y).y, expected.At(x, y).y, 1e-7);
    }
  }
  OpenOptions tags;
  tags.position.from = PositionFrom::tags;
  EXPECT_TRUE(Picture::Open(folder / "out.tif", tags).GetPlacement().affine.has_value());
}

/// A position that was put aside is not written, moved or not.
TEST(PicturePosition, ThatIsNotChosenIsNotInTheTags) {
  const TempFolder folder;
  Placed(folder, 31, 22, {0.5, 0, 0, -0.5, 1000, 2000}).Save(folder / "geo.tif");
  // Only the tags state it.
  ASSERT_TRUE(std::filesystem::remove(folder / "geo.tfw"));
  ASSERT_TRUE(Picture::Open(folder / "geo.tif").GetPlacement().affine.has_value());
  for (const PositionFrom from : {PositionFrom::none, PositionFrom::worldFile}) {
    for (const bool isCropped : {false, true}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(from)) + (isCropped ? " cropped" : ""));
      OpenOptions options;
      options.position.from = from;
      Picture picture = Picture::Open(folder / "geo.tif", options);
      if (isCropped) picture.Crop(CropStep{1, 1, 10, 10});
      picture.Save(folder / "out.tif");
      const Placement written = Picture::Open(folder / "out.tif").GetPlacement();
      EXPECT_FALSE(written.affine.has_value());
      EXPECT_TRUE(written.stated.empty());
    }
  }
}

/// The first of two positions counts: the tags follow the world file.
TEST(PicturePosition, OfAWorldFileReplacesThatOfTheTags) {
  const TempFolder folder;
  Placed(folder, 31, 22, {0.5, 0, 0, -0.5, 1000, 2000}).Save(folder / "geo.tif");
  const Affine other{2, 0, 0, -2, 100, 200};
  folder.Write("geo.tfw", WorldFileText(other));
  Picture::Open(folder / "geo.tif").Save(folder / "out.tif");
  OpenOptions tags;
  tags.position.from = PositionFrom::tags;
  EXPECT_EQ(Picture::Open(folder / "out.tif", tags).GetPlacement().affine, other);
}

TEST(PicturePosition, NorthUpMovesWholePixelsWhereItCan) {
  const TempFolder folder;
  // Columns run south, rows run east.
  Picture picture = Placed(folder, 31, 22, {0, -2, 2, 0, 100, 200});
  picture.Apply(NorthUpStep{});
  EXPECT_EQ(picture.Width(), 22);
  EXPECT_EQ(picture.Height(), 31);
  const Affine affine = *picture.GetPlacement().affine;
  EXPECT_EQ(affine, (Affine{2, 0, 0, -2, 100, 200}));
  EXPECT_EQ(picture.Bitmap()->PixelColor(0, 0), RGB(0, 1, 0));
}

TEST(PicturePosition, NorthUpResamplesATurnedPicture) {
  const TempFolder folder;
  const double sine = 0.6, cosine = 0.8;
  Picture picture = Placed(folder, 31, 22, {cosine, -sine, -sine, -cosine, 1000, 2000});
  const Affine before = *picture.GetPlacement().affine;
  picture.Apply(NorthUpStep{});
  const Affine after = *picture.GetPlacement().affine;
  EXPECT_TRUE(after.IsStraight());
  EXPECT_GT(after.xPerColumn, 0);
  EXPECT_LT(after.yPerRow, 0);
  const auto bitmap = picture.Bitmap();
  int found = 0;
  for (int y = 0; y < bitmap->Height(); ++y) {
    for (int x = 0; x < bitmap->Width(); ++x) {
      const TColor color = bitmap->PixelColor(x, y);
      if (color == clWhite) continue;
      const int number = ((color >> 16 & 255) << 8 | (color >> 8 & 255)) - 1;
      const MapPoint is = after.At(x, y), was = before.At(number % 31, number / 31);
      EXPECT_LE(std::hypot(is.x - was.x, is.y - was.y), std::sqrt(0.5) + 1e-9);
      ++found;
    }
  }
  EXPECT_GT(found, 31 * 22 / 2);
}

TEST(PicturePosition, NorthUpNeedsAPosition) {
  Picture picture = Picture::Of(std::make_unique<TBitmap>(NumberedRaster(5, 5)));
  EXPECT_THROW(picture.Apply(NorthUpStep{}), RangeError);
  EXPECT_THROW(picture.CropToMap(MapRect{0, 0, 1, 1}), RangeError);
}

TEST(PicturePosition, MapRectanglesGoToTheNearestCorners) {
  // Pixels of 2 x 2 units; the corner of the picture lies at 99, 201.
  const Affine affine{2, 0, 0, -2, 100, 200};
  const auto crop = [&](const MapRect& rect) {
    const PixelWindow step =
        WindowOfMap({rect.minX, rect.minY}, {rect.maxX, rect.maxY}, affine, 30, 20);
    return std::vector<int>{step.left, step.top, step.width, step.height};
  };
  EXPECT_EQ(crop({99, 181, 119, 201}), (std::vector{0, 0, 10, 10}));
  EXPECT_EQ(crop({99.9, 181.1, 119.9, 201}), (std::vector{0, 0, 10, 10}));
  // Halves go to the even corner: column 0.5 to 0, 1.5 to 2.
  EXPECT_EQ(crop({100, 199, 102, 201}), (std::vector{0, 0, 2, 1}));
  // At least one pixel, the one that has the rectangle's middle.
  EXPECT_EQ(crop({103.2, 194.8, 103.4, 194.9}), (std::vector{2, 3, 1, 1}));
  EXPECT_THROW(crop({97.9, 181, 119, 201}), RangeError);
  EXPECT_THROW(crop({99, 181, 99, 201}), RangeError);
  EXPECT_THROW(crop({500, 181, 600, 201}), RangeError);
}

TEST(PicturePosition, MapRectanglesOfATurnedPictureHaveABox) {
  const Affine affine{0, 1, 1, 0, 0, 0};
  const PixelWindow step = WindowOfMap({2.5, 4.5}, {6.5, 5.5}, affine, 20, 20);
  EXPECT_EQ(step.left, 5);
  EXPECT_EQ(step.top, 3);
  EXPECT_EQ(step.width, 1);
  EXPECT_EQ(step.height, 4);
}

TEST(PicturePosition, CombinesByTheMap) {
  const TempFolder folder;
  Picture below = Placed(folder, 31, 22, {2, 0, 0, -2, 100, 200});
  const TempFolder other;
  // Pixels of the same size, 3 columns further east and 2 rows further south.
  const Picture above = Placed(other, 5, 4, {2, 0, 0, -2, 106, 196});
  CombineOptions options;
  options.mode = CombineMode::overwrite;
  Picture combined = below;
  combined.Combine(above, options);
  const auto bitmap = combined.Bitmap();
  ASSERT_EQ(bitmap->Width(), 31);
  EXPECT_EQ(bitmap->PixelColor(3, 2), above.Bitmap()->PixelColor(0, 0));
  EXPECT_EQ(bitmap->PixelColor(7, 5), above.Bitmap()->PixelColor(4, 3));
  EXPECT_EQ(bitmap->PixelColor(8, 5), below.Bitmap()->PixelColor(8, 5));
  EXPECT_EQ(bitmap->PixelColor(2, 2), below.Bitmap()->PixelColor(2, 2));
  EXPECT_EQ(*combined.GetPlacement().affine, *below.GetPlacement().affine);
}

}  // namespace
}  // namespace rasterkit
