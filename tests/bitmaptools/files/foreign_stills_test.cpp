// GIF and WebP pictures with extensions of other types, which are loaded by content.

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/graphics/bitmap.h>

#include "tests/support/gif_file.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"
#include "tests/support/webp_file.h"

namespace rasterkit {
namespace {

using test::GradientRaster;
using test::SameColors;

class ForeignStills : public testing::Test {
 protected:
  struct Still {
    std::vector<uint8_t> bytes;
    Raster pixels;
  };

  ForeignStills() {
    std::vector<uint8_t> gif = test::PlainGif(21, 14).Bytes();
    stills_[0] = {gif, DecodeGif(gif)};
    Raster picture = GradientRaster(pf24bit, 21, 14);
    stills_[1] = {test::LosslessWebp(picture), std::move(picture)};
  }

  test::TempFolder folder_;
  Still stills_[2];
};

TEST_F(ForeignStills, LoadGraphic_Should_GoByContent_When_TheNameIsOfAnotherKind) {
  for (const Still& still : stills_) {
    for (const char* name : {"a.bmp", "a.png", "a.tif", "a.jpg"}) {
      SCOPED_TRACE(name);
      const auto graphic = LoadGraphic(folder_.Write(name, still.bytes));
      ASSERT_NE(graphic, nullptr);
      EXPECT_EQ(GetGraphicType(graphic.get()), GetGraphicsType(std::string(name + 1)));
      TBitmap shown;
      shown.Assign(graphic.get());
      // A JPEG keeps the colors roughly.
      if (name != std::string("a.jpg")) {
        EXPECT_TRUE(SameColors(still.pixels, shown.Content()));
      }
      EXPECT_EQ(shown.Width(), 21);
      EXPECT_EQ(shown.Height(), 14);
    }
  }
}

TEST_F(ForeignStills, LoadWindowsBitmap_Should_GoByContent_When_TheNameIsOfATiff) {
  for (const Still& still : stills_) {
    std::unique_ptr<TBitmap> bitmap;
    ASSERT_TRUE(LoadWindowsBitmap(folder_.Write("a.tif", still.bytes), 0, bitmap));
    EXPECT_TRUE(SameColors(still.pixels, bitmap->Content()));
  }
}

TEST_F(ForeignStills, LoadViaWic_Should_GiveNull_When_NothingIsThere) {
  for (const Still& still : stills_) {
    const auto head = std::span(still.bytes).first(20);
    EXPECT_EQ(LoadViaWic(folder_.Write("a.bmp", head)), nullptr);
  }
}

}  // namespace
}  // namespace rasterkit
