#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include <rasterkit/codecs/tiff/rows/sample_decoder.h>
#include <rasterkit/codecs/tiff/tiff_directory.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

/// The bytes of one sample, repeated through a block of eight.
struct SampleBytes {
  std::array<uint8_t, 8> bytes{};
  size_t count = 1;

  void Repeat() {
    for (size_t i = count; i < bytes.size(); i++) bytes[i] = bytes[i - count];
  }
};

template <typename T>
bool StoreNumber(double number, SampleBytes& sample) {
  if constexpr (std::is_integral_v<T>) {
    // The greatest 64-bit numbers are no doubles.
    constexpr T kHalf = std::numeric_limits<T>::max() / 2 + 1;
    constexpr double kEnd = 2.0 * static_cast<double>(kHalf);
    if (!(number >= static_cast<double>(std::numeric_limits<T>::min()) && number < kEnd)) {
      return false;
    }
  }
  const auto value = static_cast<T>(number);
  std::memcpy(sample.bytes.data(), &value, sizeof value);
  return true;
}

bool StoreAs(NumberType type, double number, SampleBytes& sample) {
  switch (type) {
    case NumberType::uint8:
      return StoreNumber<uint8_t>(number, sample);
    case NumberType::int8:
      return StoreNumber<int8_t>(number, sample);
    case NumberType::uint16:
      return StoreNumber<uint16_t>(number, sample);
    case NumberType::int16:
      return StoreNumber<int16_t>(number, sample);
    case NumberType::uint32:
      return StoreNumber<uint32_t>(number, sample);
    case NumberType::int32:
      return StoreNumber<int32_t>(number, sample);
    case NumberType::uint64:
      return StoreNumber<uint64_t>(number, sample);
    case NumberType::int64:
      return StoreNumber<int64_t>(number, sample);
    case NumberType::float32:
      return StoreNumber<float>(number, sample);
    case NumberType::float64:
      return StoreNumber<double>(number, sample);
    case NumberType::float16:
      break;
  }
  return false;
}

/// What a sparse file leaves out: its "no data" number, else zeros.
SampleBytes SparseSample(const PageFacts& facts, const TiffLayout& layout,
                         const std::string& noData) {
  SampleBytes sample;
  if (!layout.HasWholeSamples()) return sample;
  sample.count = BytesOf(facts.layout.type);
  double number = 0;
  const char* end = noData.data() + noData.size();
  const auto [stop, error] = std::from_chars(noData.data(), end, number);
  if (error != std::errc() || stop != end || !StoreAs(facts.layout.type, number, sample)) {
    sample.bytes.fill(0);
  }
  sample.Repeat();
  return sample;
}

bool IsInk(ColorModel model) {
  return model == ColorModel::cmyk || model == ColorModel::grayWhiteIsZero;
}

/// Missing samples: white, or the greatest number, or NaN.
SampleBytes MissingSample(const PixelLayout& layout) {
  SampleBytes sample;
  sample.count = BytesOf(layout.type);
  if (IsInk(layout.model)) return sample;
  switch (layout.type) {
    case NumberType::int8:
    case NumberType::int16:
    case NumberType::int32:
    case NumberType::int64:
      sample.bytes.fill(0xFF);
      break;
    case NumberType::float16:
    case NumberType::float32:
    case NumberType::float64:
      sample.bytes.fill(0xFF);
      return sample;
    default: {
      const uint64_t greatest = layout.bits >= 64 ? UINT64_MAX : (uint64_t{1} << layout.bits) - 1;
      std::memcpy(sample.bytes.data(), &greatest, sizeof greatest);
      sample.Repeat();
      return sample;
    }
  }
  const uint64_t greatest = (uint64_t{1} << (layout.bits - 1)) - 1;
  std::memcpy(sample.bytes.data(), &greatest, sizeof greatest);
  sample.Repeat();
  return sample;
}

void RequireSame(const PageFacts& facts, const TiffLayout& layout) {
  const PixelLayout& stated = facts.layout;
  const bool isSame = facts.width == layout.width && facts.height == layout.height &&
                      stated.bands == layout.pitch &&
                      BytesOf(stated.type) == static_cast<size_t>(layout.SampleBytes());
  if (!isSame) throw FormatError("TIFF: the directory describes its pixels in two ways");
}

}  // namespace

bool IsRasterPage(const PageFacts& facts) {
  const PixelLayout& layout = facts.layout;
  const bool isPlainDepth = layout.bits == 1 || layout.bits == 4 || layout.bits == 8;
  if (layout.type != NumberType::uint8 || layout.extraBands > 0 || !isPlainDepth) return false;
  switch (layout.model) {
    case ColorModel::gray:
    case ColorModel::grayWhiteIsZero:
    case ColorModel::palette:
      return layout.bands == 1;
    case ColorModel::rgb:
      return layout.bits == 8 && layout.alpha != AlphaKind::associated;
    default:
      return false;
  }
}

std::unique_ptr<OpenedTiff> OpenTiffSamples(TStream& stream, const PageFacts& facts,
                                            const std::string& noData, TiffHolding holding,
                                            CodecReport& report) {
  auto tiff = std::make_unique<OpenedTiff>(stream);
  PrepareTiff(tiff->handle);
  tiff->layout = ReadTiffLayout(tiff->handle, TiffReading::pixels);
  const TiffLayout& layout = tiff->layout;
  if (layout.rows != TiffRowKind::samples) {
    throw FormatError("TIFF: the directory describes its pixels in two ways");
  }
  RequireSame(facts, layout);
  RequirePlausibleSize(tiff->handle, layout, holding);
  tiff->KeepWarnings(report);
  tiff->like = Samples(facts.layout, 1, 1);
  if (IsInk(facts.layout.model)) tiff->blanks.whiteByte = 0;
  const SampleBytes sparse = SparseSample(facts, layout, noData);
  tiff->blanks.sparse = sparse.bytes;
  tiff->blanks.sparseBytes = sparse.count;
  const SampleBytes missing = MissingSample(facts.layout);
  tiff->blank = missing.bytes;
  tiff->blankBytes = missing.count;
  return tiff;
}

Raster RasterOfIndexes(const Samples& indexes) {
  const PixelLayout& layout = indexes.Layout();
  Raster raster(layout.bits <= 4 ? pf4bit : pf8bit, indexes.Width(), indexes.Height());
  raster.palette = layout.palette;
  raster.profile = layout.profile;
  CopyIndexes(indexes, raster);
  return raster;
}

void CopyIndexes(const Samples& indexes, Raster& raster) {
  const auto width = static_cast<size_t>(indexes.Width());
  for (int y = 0; y < indexes.Height(); y++) {
    const uint8_t* source = indexes.Row(y);
    uint8_t* target = raster.Row(y);
    if (raster.Format() == pf8bit) {
      std::memcpy(target, source, width);
      continue;
    }
    for (size_t x = 0; x < width; x += 2) {
      const uint8_t second = x + 1 < width ? source[x + 1] : uint8_t{0};
      target[x / 2] = static_cast<uint8_t>(source[x] << 4 | second);
    }
  }
  raster.ClearPadding();
}

}  // namespace rasterkit::detail
