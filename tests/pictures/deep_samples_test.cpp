#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/temp_folder.h"

/// Pictures of more than 8 bits: kept where the target holds them, else shown by a stated stretch.
namespace rasterkit {
namespace {

using test::TempFolder;
using testing::Contains;
using testing::HasSubstr;

constexpr uint32_t kSeed = 20260515;

PixelLayout WordLayout(int bands) {
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  layout.bands = bands;
  layout.model = bands < 3 ? ColorModel::gray : ColorModel::rgb;
  layout.alpha = bands % 2 == 0 ? AlphaKind::straight : AlphaKind::none;
  return layout;
}

Samples RandomSamples(const PixelLayout& layout, int width, int height, std::mt19937& random) {
  Samples samples(layout, width, height);
  for (int y = 0; y < height; ++y) {
    std::generate_n(samples.Row(y), samples.Stride(),
                    [&] { return static_cast<uint8_t>(random()); });
  }
  return samples;
}

/// All bands of each pixel together.
std::vector<uint8_t> BytesOf(const Samples& samples) {
  std::vector<uint8_t> bytes;
  const size_t size = BytesOf(samples.Layout().type);
  for (int y = 0; y < samples.Height(); ++y) {
    for (int x = 0; x < samples.Width(); ++x) {
      for (int plane = 0; plane < samples.Planes(); ++plane) {
        const uint8_t* pixel =
            samples.Row(y, plane) + static_cast<size_t>(x) * samples.PixelBytes();
        const size_t count = samples.Planes() > 1 ? size : samples.PixelBytes();
        bytes.insert(bytes.end(), pixel, pixel + count);
      }
    }
  }
  return bytes;
}

TEST(DeepSamples, WordsOfPngAndTiff_Should_ComeBackEqual) {
  const TempFolder folder;
  std::mt19937 random(kSeed);
  for (int bands = 1; bands <= 4; ++bands) {
    const Samples source = RandomSamples(WordLayout(bands), 23, 17, random);
    const std::vector<uint8_t> expected = BytesOf(source);
    for (const char* first : {"a.png", "a.tif"}) {
      SCOPED_TRACE(std::string(first) + ", bands " + std::to_string(bands));
      Report report = Picture::Of(source.Clone()).Save(folder / first);
      EXPECT_TRUE(report.losses.empty());
      std::string last = first;
      for (const char* next : {"b.tif", "b.png", "c.tif", "c.png"}) {
        report = Picture::Open(folder / last).Save(folder / next);
        EXPECT_TRUE(report.losses.empty()) << next;
        last = next;
        const Picture read = Picture::Open(folder / next);
        EXPECT_EQ(read.Layout().type, NumberType::uint16);
        EXPECT_EQ(read.Layout().bands, bands);
        ASSERT_EQ(BytesOf(read.Numbers()), expected) << next << ", seed " << kSeed;
      }
    }
  }
}

TEST(DeepSamples, Halves_Should_BeKeptAndWritten) {
  const TempFolder folder;
  PixelLayout layout;
  layout.type = NumberType::float16;
  layout.bits = 16;
  layout.bands = 1;
  layout.model = ColorModel::gray;
  // Every bit pattern, NaN too.
  Samples source(layout, 256, 256);
  for (int i = 0; i < 65536; ++i) {
    const auto half = static_cast<uint16_t>(i);
    std::memcpy(source.Row(i / 256) + 2 * static_cast<size_t>(i % 256), &half, 2);
  }
  Picture::Of(source.Clone()).Save(folder / "a.tif");
  EXPECT_EQ(BytesOf(Picture::Open(folder / "a.tif").Numbers()), BytesOf(source));
  Picture turned = Picture::Open(folder / "a.tif");
  turned.Turn(1).Turn(1).Turn(2).Mirror(MirrorAxis::leftRight).Mirror(MirrorAxis::leftRight);
  turned.Save(folder / "b.tif");
  const Picture read = Picture::Open(folder / "b.tif");
  EXPECT_EQ(read.Layout().type, NumberType::float16);
  EXPECT_EQ(read.Layout().bits, 16);
  EXPECT_EQ(BytesOf(read.Numbers()), BytesOf(source));
}

/// Numbers from 1000 to 1600.
Samples LowContrast() {
  Samples samples(WordLayout(1), 7, 1);
  for (int x = 0; x < 7; ++x) {
    const auto number = static_cast<uint16_t>(1000 + 100 * x);
    std::memcpy(samples.Row(0) + 2 * static_cast<size_t>(x), &number, 2);
  }
  return samples;
}

std::vector<int> GraysOf(const Picture& picture) {
  const auto bitmap = picture.Bitmap();
  std::vector<int> grays;
  for (int x = 0; x < bitmap->Width(); ++x) grays.push_back(bitmap->PixelColor(x, 0) & 255);
  return grays;
}

NumberStretch Fixed(double black, double white) {
  NumberStretch stretch;
  stretch.kind = NumberStretch::Kind::fixed;
  stretch.least = black;
  stretch.greatest = white;
  return stretch;
}

TEST(DeepSamples, Stretch_Should_HoldWhereverNumbersAreShown) {
  const TempFolder folder;
  const std::vector<int> whole{0, 43, 85, 128, 170, 213, 255};
  const std::vector<int> fixed{0, 0, 0, 128, 255, 255, 255};
  for (const bool isFixed : {false, true}) {
    Picture picture = Picture::Of(LowContrast());
    if (isFixed) picture.Stretch(Fixed(1200, 1400));
    const std::vector<int>& expected = isFixed ? fixed : whole;
    const std::string note = isFixed ? "numbers from 1200 to 1400 are shown as black to white"
                                     : "numbers from 1000 to 1600 are shown as black to white";
    EXPECT_EQ(GraysOf(picture), expected);
    const Report bmp = picture.Save(folder / "a.bmp");
    EXPECT_THAT(bmp.notes, Contains(note));
    ASSERT_EQ(bmp.losses.size(), 1u);
    EXPECT_EQ(bmp.losses[0].kind, LossKind::bits);
    EXPECT_EQ(GraysOf(Picture::Open(folder / "a.bmp")), expected);
    const Report tiff = picture.Save(folder / "a.tif");
    EXPECT_TRUE(tiff.losses.empty());
    EXPECT_EQ(BytesOf(Picture::Open(folder / "a.tif").Numbers()), BytesOf(LowContrast()));
    Picture bits = picture;
    const Report eight = bits.Change(SetBits{8}).Save(folder / "b.tif");
    EXPECT_THAT(eight.notes, Contains(note));
    EXPECT_EQ(GraysOf(Picture::Open(folder / "b.tif")), expected);
    const Report plan = picture.Plan(folder / "c.bmp");
    EXPECT_EQ(plan.losses.size(), 1u);
    EXPECT_THAT(plan.notes, testing::Not(Contains(HasSubstr("shown as black to white"))))
        << "the range is not known before a pixel is read";
  }
}

TEST(DeepSamples, Stretch_Should_CountForLaterStepsAlone) {
  Picture picture = Picture::Of(LowContrast());
  picture.Change(MakeGray{}).Stretch(Fixed(1200, 1400));
  EXPECT_EQ(GraysOf(picture), (std::vector<int>{0, 43, 85, 128, 170, 213, 255}));
}

TEST(DeepSamples, WrongStretch_Should_BeRefused) {
  Picture picture = Picture::Of(LowContrast());
  EXPECT_THROW(picture.Stretch(Fixed(5, 5)), RangeError);
  EXPECT_THROW(picture.Stretch(Fixed(0, INFINITY)), RangeError);
  NumberStretch percent;
  percent.kind = NumberStretch::Kind::percent;
  for (const double wrong : {-0.1, 50.0, std::nan("")}) {
    percent.percent = wrong;
    EXPECT_THROW(picture.Stretch(percent), RangeError) << wrong;
  }
  percent.percent = 49.9;
  EXPECT_NO_THROW(picture.Stretch(percent));
}

PixelLayout GridLayout(NumberType type) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  layout.bands = 1;
  layout.model = ColorModel::gray;
  return layout;
}

TEST(DeepSamples, PlacedGrids_Should_StayNumbersWhenCombined) {
  std::mt19937 random(kSeed);
  Picture under = Picture::Of(RandomSamples(GridLayout(NumberType::int16), 8, 6, random));
  Picture over = Picture::Of(RandomSamples(GridLayout(NumberType::uint16), 3, 2, random));
  const std::vector<uint8_t> upper = BytesOf(over.Numbers());
  under.Apply(PlaceStep{{10, 0, 0, -10, 1000, 2000}});
  over.Apply(PlaceStep{{10, 0, 0, -10, 1020, 1990}});
  Picture both = under;
  both.Combine(over);
  EXPECT_EQ(both.Layout().type, NumberType::int32);
  const Samples result = both.Numbers();
  const Samples lower = under.Numbers();
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 8; ++x) {
      int32_t number;
      std::memcpy(&number, result.Row(y) + 4 * static_cast<size_t>(x), 4);
      if (x >= 2 && x < 5 && y >= 1 && y < 3) {
        uint16_t above;
        std::memcpy(&above, &upper[static_cast<size_t>((y - 1) * 3 + x - 2) * 2], 2);
        ASSERT_EQ(number, above);
      } else {
        int16_t below;
        std::memcpy(&below, lower.Row(y) + 2 * static_cast<size_t>(x), 2);
        ASSERT_EQ(number, below);
      }
    }
  }
  EXPECT_EQ(*both.GetPlacement().affine, *under.GetPlacement().affine);
  Picture colors = under;
  colors.Combine(over, {.mode = CombineMode::key});
  EXPECT_EQ(colors.Layout().BitsPerPixel(), 24);
  EXPECT_THROW(under.Combine(over, {.mode = CombineMode::grid, .align = CombineAlign::none}),
               RangeError);
  EXPECT_THROW(under.Combine(Picture::Of(std::make_unique<TBitmap>(Raster(pf24bit, 8, 6))),
                             {.mode = CombineMode::grid}),
               UnsupportedError);
}

}  // namespace
}  // namespace rasterkit
