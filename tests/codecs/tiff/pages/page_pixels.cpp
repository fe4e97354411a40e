#include "tests/codecs/tiff/pages/page_pixels.h"

#include <fmt/format.h>

namespace rasterkit::test {

namespace {

uint64_t LimitedBits(uint64_t bits, const PixelLayout& layout) {
  const bool isSigned = layout.type == NumberType::int8 || layout.type == NumberType::int16 ||
                        layout.type == NumberType::int32 || layout.type == NumberType::int64;
  const int size = static_cast<int>(8 * BytesOf(layout.type));
  if (layout.bits == size) return bits;
  bits &= (uint64_t{1} << layout.bits) - 1;
  if (isSigned && (bits >> (layout.bits - 1) & 1) != 0) bits |= ~uint64_t{0} << layout.bits;
  return bits;
}

/// Clears the highest exponent bit, so that no float is infinite.
uint64_t FiniteBits(uint64_t bits, NumberType type) {
  if (type == NumberType::float16) return bits & 0xBFFF;
  if (type == NumberType::float32) return bits & 0xBFFFFFFF;
  if (type == NumberType::float64) return bits & 0xBFFFFFFFFFFFFFFF;
  return bits;
}

uint64_t NumberAt(const Samples& samples, int x, int y, int band) {
  const size_t bytes = BytesOf(samples.Layout().type);
  const bool isInPlanes = samples.Planes() > 1;
  const uint8_t* row = samples.Row(y, isInPlanes ? band : 0);
  const size_t at = static_cast<size_t>(x) * samples.PixelBytes() +
                    (isInPlanes ? 0 : static_cast<size_t>(band) * bytes);
  uint64_t number = 0;
  std::memcpy(&number, row + at, bytes);
  return number;
}

testing::AssertionResult SameSamples(const Samples& a, const Samples& b) {
  const PixelLayout &left = a.Layout(), &right = b.Layout();
  if (left.type != right.type || left.bits != right.bits || left.bands != right.bands ||
      left.model != right.model || left.alpha != right.alpha ||
      left.extraBands != right.extraBands) {
    return testing::AssertionFailure() << fmt::format(
               "layouts differ: {} bits {} bands model {} alpha {} extra {}, and {} bits "
               "{} bands model {} alpha {} extra {}",
               left.bits, left.bands, static_cast<int>(left.model), static_cast<int>(left.alpha),
               left.extraBands, right.bits, right.bands, static_cast<int>(right.model),
               static_cast<int>(right.alpha), right.extraBands);
  }
  if (a.Width() != b.Width() || a.Height() != b.Height()) {
    return testing::AssertionFailure() << "sizes differ";
  }
  for (int y = 0; y < a.Height(); y++) {
    for (int x = 0; x < a.Width(); x++) {
      for (int band = 0; band < left.bands; band++) {
        const uint64_t one = NumberAt(a, x, y, band), two = NumberAt(b, x, y, band);
        if (one == two) continue;
        return testing::AssertionFailure()
               << fmt::format("({}, {}) band {}: {:x} and {:x}", x, y, band, one, two);
      }
    }
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult SameRasters(const Raster& a, const Raster& b) {
  if (a.Format() != b.Format() || a.Width() != b.Width() || a.Height() != b.Height()) {
    return testing::AssertionFailure() << fmt::format(
               "format {} of {} x {}, and {} of {} x {}", static_cast<int>(a.Format()), a.Width(),
               a.Height(), static_cast<int>(b.Format()), b.Width(), b.Height());
  }
  if (a.alphaFormat != b.alphaFormat) return testing::AssertionFailure() << "alpha differs";
  for (int y = 0; y < a.Height(); y++) {
    for (int x = 0; x < a.Width(); x++) {
      if (a.PixelColor(x, y) != b.PixelColor(x, y)) {
        return testing::AssertionFailure() << fmt::format(
                   "({}, {}): {:06x} and {:06x}", x, y, static_cast<uint32_t>(a.PixelColor(x, y)),
                   static_cast<uint32_t>(b.PixelColor(x, y)));
      }
    }
    // Indexes and alpha too.
    if (!std::equal(a.Row(y), a.Row(y) + a.RowBytes(), b.Row(y))) {
      return testing::AssertionFailure() << "row " << y << " differs";
    }
  }
  return testing::AssertionSuccess();
}

PageKind RasterKind(const std::string& name, TPixelFormat format, ColorModel model, int bits,
                    int bands, const std::function<void(Raster&)>& finish = {}) {
  const auto make = [=](int width, int height, std::mt19937& random) -> Pixels {
    Raster raster = RandomRaster(format, width, height, random);
    if (finish) finish(raster);
    return raster;
  };
  return {name, make, model, bits, bands};
}

HPALETTE MixedPalette(int count) {
  std::vector<tagPALETTEENTRY> entries;
  for (int i = 0; i < count; i++) {
    entries.push_back({static_cast<uint8_t>(i * 37), static_cast<uint8_t>(255 - i),
                       static_cast<uint8_t>(i * i), 0});
  }
  return HPALETTE(entries);
}

void AddRasterKinds(std::vector<PageKind>& kinds) {
  kinds.push_back(RasterKind("1-bit", pf1bit, ColorModel::gray, 1, 1));
  kinds.push_back(
      RasterKind("1-bit reversed", pf1bit, ColorModel::grayWhiteIsZero, 1, 1, [](Raster& raster) {
        const tagPALETTEENTRY colors[] = {{255, 255, 255, 0}, {0, 0, 0, 0}};
        raster.palette = HPALETTE(colors);
      }));
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    const int bits = StoredBitsPerPixel(format);
    const auto name = [&](const char* what) { return fmt::format("{}-bit {}", bits, what); };
    if (bits > 1) {
      kinds.push_back(
          RasterKind(name("gray"), format, ColorModel::gray, bits, 1,
                     [bits](Raster& raster) { raster.palette = GrayPalette(1 << bits); }));
    }
    kinds.push_back(
        RasterKind(name("palette"), format, ColorModel::palette, bits, 1,
                   [bits](Raster& raster) { raster.palette = MixedPalette(1 << bits); }));
  }
  kinds.push_back(RasterKind("24-bit", pf24bit, ColorModel::rgb, 8, 3));
  kinds.push_back(RasterKind("32-bit alpha", pf32bit, ColorModel::rgb, 8, 4,
                             [](Raster& raster) { raster.alphaFormat = afDefined; }));
}

PageKind SampleKind(const std::string& name, PixelLayout layout, bool inPlanes = false) {
  const auto make = [=](int width, int height, std::mt19937& random) -> Pixels {
    return RandomSamplesOf(layout, width, height, inPlanes, random);
  };
  return {name, make, layout.model, layout.bits, layout.bands};
}

PixelLayout LayoutFor(NumberType type, int bits, int bands, ColorModel model,
                      AlphaKind alpha = AlphaKind::none, int extraBands = 0) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = bits;
  layout.bands = bands;
  layout.model = model;
  layout.alpha = alpha;
  layout.extraBands = extraBands;
  return layout;
}

}  // namespace

Samples RandomSamplesOf(const PixelLayout& layout, int width, int height, bool inPlanes,
                        std::mt19937& random) {
  Samples samples(layout, width, height, inPlanes);
  const size_t bytes = BytesOf(layout.type);
  for (int plane = 0; plane < samples.Planes(); plane++) {
    for (int y = 0; y < height; y++) {
      uint8_t* row = samples.Row(y, plane);
      for (size_t at = 0; at + bytes <= samples.Stride(); at += bytes) {
        uint64_t bits = uint64_t{random()} << 32 | random();
        bits = FiniteBits(LimitedBits(bits, layout), layout.type);
        std::memcpy(row + at, &bits, bytes);
      }
    }
  }
  return samples;
}

Raster RandomRaster(TPixelFormat format, int width, int height, std::mt19937& random) {
  Raster raster(format, width, height);
  for (int y = 0; y < height; y++) {
    for (size_t i = 0; i < raster.RowBytes(); i++) {
      raster.Row(y)[i] = static_cast<uint8_t>(random());
    }
  }
  raster.ClearPadding();
  return raster;
}

std::vector<PageKind> AllPageKinds() {
  std::vector<PageKind> kinds;
  AddRasterKinds(kinds);
  using enum NumberType;
  struct Number {
    NumberType type;
    int bits;
  };
  for (const auto [type, bits] :
       {Number{uint8, 2}, Number{uint8, 6}, Number{int8, 8}, Number{uint16, 12}, Number{int16, 12},
        Number{uint16, 16}, Number{int16, 16}, Number{uint32, 24}, Number{uint32, 32},
        Number{int32, 32}, Number{uint64, 64}, Number{int64, 64}, Number{float16, 16},
        Number{float32, 32}, Number{float64, 64}}) {
    const std::string name =
        fmt::format("grid of type {} with {} bits", static_cast<int>(type), bits);
    kinds.push_back(SampleKind(name, LayoutFor(type, bits, 1, ColorModel::gray)));
  }
  kinds.push_back(
      SampleKind("16-bit white is zero", LayoutFor(uint16, 16, 1, ColorModel::grayWhiteIsZero)));
  kinds.push_back(SampleKind("16-bit RGB", LayoutFor(uint16, 16, 3, ColorModel::rgb)));
  kinds.push_back(
      SampleKind("16-bit RGB in planes", LayoutFor(uint16, 16, 3, ColorModel::rgb), true));
  kinds.push_back(SampleKind("10-bit RGB", LayoutFor(uint16, 10, 3, ColorModel::rgb)));
  kinds.push_back(SampleKind("16-bit associated alpha",
                             LayoutFor(uint16, 16, 4, ColorModel::rgb, AlphaKind::associated)));
  kinds.push_back(SampleKind("8-bit associated alpha",
                             LayoutFor(uint8, 8, 4, ColorModel::rgb, AlphaKind::associated)));
  kinds.push_back(
      SampleKind("gray and alpha", LayoutFor(uint8, 8, 2, ColorModel::gray, AlphaKind::straight)));
  kinds.push_back(SampleKind("CMYK", LayoutFor(uint8, 8, 4, ColorModel::cmyk)));
  kinds.push_back(SampleKind("CMYK of 16 bits with alpha in planes",
                             LayoutFor(uint16, 16, 5, ColorModel::cmyk, AlphaKind::straight),
                             true));
  kinds.push_back(SampleKind("L*a*b*", LayoutFor(uint8, 8, 3, ColorModel::lab)));
  kinds.push_back(
      SampleKind("ICC L*a*b* of 16 bits", LayoutFor(uint16, 16, 3, ColorModel::iccLab)));
  kinds.push_back(SampleKind("7 bands of float",
                             LayoutFor(float32, 32, 7, ColorModel::gray, AlphaKind::none, 6)));
  kinds.push_back(SampleKind("RGB with 2 more bands",
                             LayoutFor(uint8, 8, 5, ColorModel::rgb, AlphaKind::none, 2)));
  PixelLayout palette = LayoutFor(uint8, 8, 2, ColorModel::palette, AlphaKind::straight);
  palette.palette = MixedPalette(256);
  kinds.push_back(SampleKind("palette and alpha", palette));
  return kinds;
}

TiffForm StripForm(int compression, int predictor) {
  TiffForm form;
  form.compression = compression;
  form.predictor = predictor;
  form.photometric = -1;
  form.rowsPerStrip = 7;
  return form;
}

testing::AssertionResult SameNumbers(const Pixels& expected, const Pixels& actual) {
  if (expected.index() != actual.index()) {
    return testing::AssertionFailure() << "one is a raster, the other one samples";
  }
  if (const auto* raster = std::get_if<Raster>(&expected)) {
    return SameRasters(*raster, std::get<Raster>(actual));
  }
  return SameSamples(std::get<Samples>(expected), std::get<Samples>(actual));
}

std::string Describe(const TiffForm& form) {
  return fmt::format(
      "compression {}, predictor {}, photometric {}, {}, {}, {}, {}, fill order {}",
      form.compression, form.predictor, form.photometric, form.isPlanar ? "planar" : "together",
      form.tileWidth > 0 ? fmt::format("tiles {} x {}", form.tileWidth, form.tileHeight)
                         : fmt::format("strips of {}", form.rowsPerStrip),
      form.isBigEndian ? "big-endian" : "little-endian", form.isBigTiff ? "BigTIFF" : "classic",
      form.fillOrder);
}

std::vector<uint8_t> Written(const Pixels& pixels, const PictureWriting& writing,
                             WrittenPicture* result) {
  TMemoryStream stream;
  WrittenPicture written = WriteTiff(pixels, writing, stream);
  if (result) *result = std::move(written);
  return stream.TakeBytes();
}

}  // namespace rasterkit::test
