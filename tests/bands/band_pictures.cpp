#include "tests/bands/band_pictures.h"

#include <cstring>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

PictureKind RasterKind(std::string name, std::function<Raster(int, int, std::mt19937&)> make) {
  return {std::move(name), [make](int width, int height, std::mt19937& random) -> Pixels {
            Raster raster = make(width, height, random);
            raster.resolution = {300, 200};
            return raster;
          }};
}

Raster WithPalette(TPixelFormat format, int entries, int width, int height, std::mt19937& random) {
  Raster raster = RandomRaster(format, width, height, random);
  raster.palette = RandomPalette(entries, random);
  return raster;
}

std::vector<PictureKind> MakeRasterKinds() {
  std::vector<PictureKind> kinds;
  for (const TPixelFormat format : kEveryFormat) {
    kinds.push_back(RasterKind("format " + std::to_string(format), [format](int w, int h, auto& r) {
      return RandomRaster(format, w, h, r);
    }));
  }
  kinds.push_back(RasterKind("gray", [](int w, int h, auto& r) {
    Raster raster = RandomRaster(pf8bit, w, h, r);
    raster.palette = GrayPalette(256);
    return raster;
  }));
  kinds.push_back(RasterKind("16 grays", [](int w, int h, auto& r) {
    Raster raster = RandomRaster(pf4bit, w, h, r);
    raster.palette = GrayPalette(16);
    return raster;
  }));
  for (const bool isReversed : {false, true}) {
    kinds.push_back(RasterKind(isReversed ? "white plan" : "plan", [isReversed](int w, int h,
                                                                                auto& r) {
      Raster raster = RandomRaster(pf1bit, w, h, r);
      const tagPALETTEENTRY black{0, 0, 0, 0}, white{255, 255, 255, 0};
      const tagPALETTEENTRY entries[] = {isReversed ? white : black, isReversed ? black : white};
      raster.palette = HPALETTE(entries);
      return raster;
    }));
  }
  for (const TPixelFormat format : {pf4bit, pf8bit}) {
    kinds.push_back(
        RasterKind("three colors " + std::to_string(format), [format](int w, int h, auto& r) {
          Raster raster = WithPalette(format, 3, w, h, r);
          for (int y = 0; y < h; ++y) {
            std::memset(raster.Row(y), 0, raster.Stride());
            for (int x = 0; x < w; ++x) {
              const auto index = static_cast<unsigned>(r() % 3);
              if (format == pf8bit) {
                raster.Row(y)[x] = static_cast<uint8_t>(index);
              } else {
                raster.Row(y)[x / 2] =
                    static_cast<uint8_t>(raster.Row(y)[x / 2] | index << (x % 2 == 0 ? 4 : 0));
              }
            }
          }
          return raster;
        }));
  }
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf16bit, pf24bit}) {
    kinds.push_back(
        RasterKind("key color " + std::to_string(format), [format](int w, int h, auto& r) {
          Raster raster = RandomRaster(format, w, h, r);
          raster.transparentColor = raster.PixelColor(w / 2, h / 2);
          return raster;
        }));
  }
  kinds.push_back(RasterKind("alpha", [](int w, int h, auto& r) {
    Raster raster = RandomRaster(pf32bit, w, h, r);
    raster.alphaFormat = afDefined;
    return raster;
  }));
  return kinds;
}

void PutSmallNumber(uint8_t* bytes, NumberType type, int number) {
  if (type == NumberType::float32) {
    const auto real = static_cast<float>(number) / 8.0f;
    std::memcpy(bytes, &real, sizeof real);
  } else if (type == NumberType::float64) {
    const double real = number / 8.0;
    std::memcpy(bytes, &real, sizeof real);
  } else if (type == NumberType::float16) {
    const auto half = static_cast<uint16_t>(15 << 10 | number << 2);
    std::memcpy(bytes, &half, sizeof half);
  } else {
    std::memset(bytes, 0, BytesOf(type));
    bytes[0] = static_cast<uint8_t>(number);
    if (type == NumberType::uint8) bytes[0] = static_cast<uint8_t>(2 * number + 1);
    if (type == NumberType::uint16) bytes[1] = static_cast<uint8_t>(2 * number);
  }
}

/// Finite numbers that a double adds exactly enough.
void FillNumbers(Samples& samples, std::mt19937& random) {
  const NumberType type = samples.Layout().type;
  for (int plane = 0; plane < samples.Planes(); ++plane) {
    for (int y = 0; y < samples.Height(); ++y) {
      uint8_t* row = samples.Row(y, plane);
      const size_t size = BytesOf(type);
      for (size_t i = 0; i + size <= samples.Stride(); i += size) {
        if (samples.Layout().alpha == AlphaKind::straight) {
          // Numbers from 0 on whose products and sums are exact doubles.
          PutSmallNumber(row + i, type, static_cast<int>(random() % 127));
        } else if (type == NumberType::float32) {
          const auto number = static_cast<float>(random() % 100000) / 8.0f - 5000.0f;
          std::memcpy(row + i, &number, size);
        } else if (type == NumberType::float64) {
          const double number = static_cast<double>(random() % 100000) / 64.0 - 700.0;
          std::memcpy(row + i, &number, size);
        } else if (type == NumberType::float16) {
          const auto bits = static_cast<uint16_t>((random() & 0x83FF) | (15 + random() % 6) << 10);
          std::memcpy(row + i, &bits, size);
        } else {
          for (size_t k = 0; k < size; ++k) row[i + k] = static_cast<uint8_t>(random());
        }
      }
    }
  }
}

PixelLayout LayoutFor(NumberType type, int bands) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(BytesOf(type) * 8);
  layout.bands = bands;
  layout.model = bands <= 2 ? ColorModel::gray : bands == 3 ? ColorModel::rgb : ColorModel::cmyk;
  if (bands == 2) layout.alpha = AlphaKind::straight;
  if (bands == 5) layout.alpha = AlphaKind::associated;
  return layout;
}

std::vector<PictureKind> MakeSampleKinds() {
  std::vector<PictureKind> kinds;
  for (int number = 0; number <= static_cast<int>(NumberType::float64); ++number) {
    for (int bands = 1; bands <= 5; ++bands) {
      for (const bool inPlanes : {false, true}) {
        const PixelLayout layout = LayoutFor(static_cast<NumberType>(number), bands);
        kinds.push_back({"numbers " + std::to_string(number) + " in " + std::to_string(bands) +
                             (inPlanes ? " planes" : " bands"),
                         [layout, inPlanes](int w, int h, std::mt19937& random) -> Pixels {
                           Samples samples(layout, w, h, inPlanes);
                           samples.resolution = {300, 200};
                           FillNumbers(samples, random);
                           return samples;
                         }});
      }
    }
  }
  return kinds;
}

void ChangeRow(Pixels& pixels, int y) {
  if (auto* raster = std::get_if<Raster>(&pixels)) {
    for (size_t i = 0; i < raster->RowBytes(); ++i) raster->Row(y)[i] ^= 0x5A;
    return;
  }
  auto& samples = std::get<Samples>(pixels);
  for (int plane = 0; plane < samples.Planes(); ++plane) {
    for (size_t i = 0; i < samples.Stride(); ++i) samples.Row(y, plane)[i] ^= 0x5A;
  }
}

bool Contains(RowRange range, int y) {
  return y >= range.first && y < range.first + range.count;
}

void ExpectNeeds(const Stage& stage, const Pixels& source, const Pixels& made, RowRange range) {
  const RowRange needs = stage.Needs(range);
  ASSERT_TRUE(needs.count == 0 ||
              (needs.first >= 0 && needs.first + needs.count <= HeightOf(source)))
      << needs.first << " " << needs.count;
  Pixels changed = CloneOf(source);
  for (int y = 0; y < HeightOf(source); ++y) {
    if (!Contains(needs, y)) ChangeRow(changed, y);
  }
  const Pixels other = MadeBy(stage, changed);
  for (int y = range.first; y < range.first + range.count; ++y) {
    for (int x = 0; x < WidthOf(made); ++x) {
      ASSERT_EQ(PixelAt(made, x, y), PixelAt(other, x, y))
          << x << ", " << y << " needs " << needs.first << " to " << needs.first + needs.count - 1;
    }
  }
}

}  // namespace

const std::vector<PictureKind>& RasterKinds() {
  static const std::vector<PictureKind> kKinds = MakeRasterKinds();
  return kKinds;
}

const std::vector<PictureKind>& SampleKinds() {
  static const std::vector<PictureKind> kKinds = MakeSampleKinds();
  return kKinds;
}

std::vector<PictureKind> EveryKind() {
  std::vector<PictureKind> kinds = RasterKinds();
  kinds.insert(kinds.end(), SampleKinds().begin(), SampleKinds().end());
  return kinds;
}

Pixels CloneOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) -> Pixels { return rows.Clone(); }, pixels);
}

Sides SidesOf(const Pixels& pixels) {
  return {WidthOf(pixels), HeightOf(pixels)};
}

std::vector<uint8_t> PixelAt(const Pixels& pixels, int x, int y) {
  if (const auto* raster = std::get_if<Raster>(&pixels)) {
    const int bits = StoredBitsPerPixel(raster->Format());
    const uint8_t* row = raster->Row(y);
    if (bits == 1) return {static_cast<uint8_t>(row[x / 8] >> (7 - x % 8) & 1)};
    if (bits == 4) return {static_cast<uint8_t>(row[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15)};
    return {row + x * (bits / 8), row + (x + 1) * (bits / 8)};
  }
  const auto& samples = std::get<Samples>(pixels);
  std::vector<uint8_t> bytes;
  const auto size = static_cast<ptrdiff_t>(samples.PixelBytes());
  for (int plane = 0; plane < samples.Planes(); ++plane) {
    const uint8_t* row = samples.Row(y, plane);
    bytes.insert(bytes.end(), row + x * size, row + (x + 1) * size);
  }
  return bytes;
}

testing::AssertionResult SameRows(const Pixels& expected, const Pixels& actual) {
  if (expected.index() != actual.index()) return testing::AssertionFailure() << "another kind";
  if (const auto* raster = std::get_if<Raster>(&expected)) {
    const auto& other = std::get<Raster>(actual);
    if (raster->transparentColor != other.transparentColor) {
      return testing::AssertionFailure() << "another transparent color";
    }
    if (raster->alphaFormat != other.alphaFormat) {
      return testing::AssertionFailure() << "another alpha mark";
    }
    const testing::AssertionResult padding = PaddingIsZero(other);
    return padding ? SamePixels(*raster, other) : padding;
  }
  if (SidesOf(expected) != SidesOf(actual)) return testing::AssertionFailure() << "other sides";
  const auto &a = std::get<Samples>(expected), &b = std::get<Samples>(actual);
  if (a.Layout().type != b.Layout().type || a.Layout().bands != b.Layout().bands ||
      a.Layout().alpha != b.Layout().alpha || a.Planes() != b.Planes()) {
    return testing::AssertionFailure() << "another layout";
  }
  for (int y = 0; y < a.Height(); ++y) {
    for (int x = 0; x < a.Width(); ++x) {
      if (PixelAt(expected, x, y) != PixelAt(actual, x, y)) {
        return testing::AssertionFailure() << "pixel " << x << ", " << y << " differs";
      }
    }
  }
  return testing::AssertionSuccess();
}

Pixels MadeBy(const Stage& stage, const Pixels& source, int threads) {
  Changes changes;
  return stage.Make(CloneOf(source), {threads, {}}, changes);
}

Pixels MadeInEveryWay(const Stage& stage, const Pixels& source) {
  Pixels made = MadeBy(stage, source);
  for (const int threads : {2, 7}) {
    EXPECT_TRUE(SameRows(made, MadeBy(stage, source, threads))) << threads << " threads";
  }
  const int height = HeightOf(made);
  for (const RowRange range :
       {RowRange{0, 1}, RowRange{height - 1, 1}, RowRange{height / 3, (height + 2) / 3}}) {
    ExpectNeeds(stage, source, made, range);
  }
  EXPECT_EQ(stage.Needs({0, 0}).count, 0);
  return made;
}

SeenPixel Seen(const Pixels& pixels, int x, int y) {
  const auto& raster = std::get<Raster>(pixels);
  const TColor color = raster.PixelColor(x, y);
  if (raster.Format() == pf32bit && raster.alphaFormat == afDefined) {
    return {color, raster.Row(y)[4 * x + 3]};
  }
  return {color, raster.transparentColor == color ? 0 : 255};
}

}  // namespace rasterkit::test
