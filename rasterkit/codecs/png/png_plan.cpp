#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <map>
#include <memory>
#include <set>

#include <fmt/format.h>

#include <rasterkit/codecs/png/png_encoding.h>
#include <rasterkit/codecs/png/png_plan.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

constexpr int kGray = PNG_COLOR_TYPE_GRAY, kColor = PNG_COLOR_TYPE_RGB;
constexpr int kIndexed = PNG_COLOR_TYPE_PALETTE, kGrayAlpha = PNG_COLOR_TYPE_GRAY_ALPHA;
constexpr int kColorAlpha = PNG_COLOR_TYPE_RGB_ALPHA;

/// A row that a plan fills; shared because a function object must be copyable.
using RowBuffer = std::shared_ptr<std::vector<uint8_t>>;

RowBuffer MakeBuffer(size_t bytes) {
  return std::make_shared<std::vector<uint8_t>>(bytes);
}

/// Packs samples of one byte each to `bits` of 1, 2, 4 or 8, the first in the high bits.
void PackSamples(const uint8_t* samples, int width, int bits, uint8_t* target) {
  const int perByte = 8 / bits;
  for (int x = 0; x < width; x += perByte) {
    unsigned packed = 0;
    for (int i = 0; i < perByte; i++) {
      packed = packed << bits | (x + i < width ? samples[x + i] : 0u);
    }
    *target++ = static_cast<uint8_t>(packed);
  }
}

/// Bits of the gray ramp that is the palette of the raster, if no pixel lies beyond it.
std::optional<int> RampBits(const Raster& raster, size_t usedEntries) {
  const int count = raster.palette.Count();
  for (const int bits : {1, 2, 4, 8}) {
    if (count == 1 << bits && usedEntries == static_cast<size_t>(count) &&
        raster.palette == GrayPalette(count)) {
      return bits;
    }
  }
  return std::nullopt;
}

PngPlan PlanIndexed(const Raster& raster, const std::optional<PngForm>& wanted) {
  const int bits = StoredBitsPerPixel(raster.Format());
  PngPlan plan;
  plan.palette = PngPaletteOf(raster);
  const auto ramp = RampBits(raster, plan.palette.size());
  const bool wantsGray = wanted && wanted->colorType == kGray;
  const bool wantsPalette = wanted && wanted->colorType == kIndexed;
  plan.form = {bits, kIndexed, false};
  if (ramp && !wantsPalette && (wantsGray || *ramp == bits)) {
    plan.form = {*ramp, kGray, false};
    plan.palette.clear();
  } else if (wantsPalette && wanted->bits < bits && plan.palette.size() <= 1u << wanted->bits) {
    plan.form.bits = wanted->bits;
  }
  plan.palette.resize(std::min(plan.palette.size(), size_t{1} << plan.form.bits));
  const int fileBits = plan.form.bits;
  if (fileBits == bits) {
    plan.row = [&raster](int y) { return raster.Row(y); };
    return plan;
  }
  const auto width = static_cast<size_t>(raster.Width());
  // Eight more: the last byte of a row can hold more indexes than the row has.
  plan.row = [&raster, fileBits, indexes = MakeBuffer(width + 8),
              packed = MakeBuffer(width)](int y) {
    UnpackIndexes(raster.Row(y), raster.Format(), raster.Width(), indexes->data());
    PackSamples(indexes->data(), raster.Width(), fileBits, packed->data());
    return packed->data();
  };
  return plan;
}

/// The colors with their opacities, as B G R A; the first are those that are not opaque. Nothing if
/// there are more than a palette holds.
std::optional<std::vector<uint32_t>> ColorsOf(const Raster& raster) {
  constexpr size_t kMostColors = 256;
  std::set<uint32_t> found;
  uint32_t last = 0;
  for (int y = 0; y < raster.Height(); y++) {
    for (int x = 0; x < raster.Width(); x++) {
      uint32_t color = 0;
      std::memcpy(&color, raster.Row(y) + 4 * static_cast<size_t>(x), sizeof color);
      if (color == last && !found.empty()) continue;
      last = color;
      found.insert(color);
      if (found.size() > kMostColors) return std::nullopt;
    }
  }
  std::vector<uint32_t> colors(found.begin(), found.end());
  std::stable_partition(colors.begin(), colors.end(), [](uint32_t color) {
    return std::bit_cast<std::array<uint8_t, 4>>(color)[3] != 255;
  });
  return colors;
}

/// True color with alpha goes back to the palette that it came from.
std::optional<PngPlan> PlanPaletteAlpha(const Raster& raster, const PngForm& wanted) {
  const auto colors = ColorsOf(raster);
  if (!colors) return std::nullopt;
  PngPlan plan;
  plan.form = {wanted.bits, kIndexed, false};
  while (colors->size() > size_t{1} << plan.form.bits) plan.form.bits *= 2;
  std::map<uint32_t, uint8_t> indexes;
  for (const uint32_t color : *colors) {
    indexes[color] = static_cast<uint8_t>(plan.palette.size());
    const auto bytes = std::bit_cast<std::array<uint8_t, 4>>(color);
    plan.palette.push_back({bytes[2], bytes[1], bytes[0]});
    if (bytes[3] != 255) plan.opacities.push_back(bytes[3]);
  }
  plan.row = [&raster, bits = plan.form.bits, indexes = std::move(indexes),
              row = MakeBuffer(static_cast<size_t>(raster.Width()))](int y) {
    for (int x = 0; x < raster.Width(); x++) {
      uint32_t color = 0;
      std::memcpy(&color, raster.Row(y) + 4 * static_cast<size_t>(x), sizeof color);
      (*row)[static_cast<size_t>(x)] = indexes.at(color);
    }
    PackSamples(row->data(), raster.Width(), bits, row->data());
    return row->data();
  };
  return plan;
}

bool IsGray(const Raster& raster) {
  const int step = raster.Format() == pf24bit ? 3 : 4;
  for (int y = 0; y < raster.Height(); y++) {
    const uint8_t* pixel = raster.Row(y);
    for (int x = 0; x < raster.Width(); x++, pixel += step) {
      if (pixel[0] != pixel[1] || pixel[0] != pixel[2]) return false;
    }
  }
  return true;
}

/// Takes the first byte of each pixel, and the fourth if there is alpha.
void TakeGray(const uint8_t* pixel, int width, int step, bool hasAlpha, uint8_t* target) {
  for (int x = 0; x < width; x++, pixel += step) {
    *target++ = pixel[0];
    if (hasAlpha) *target++ = pixel[3];
  }
}

PngPlan PlanColors(const Raster& raster, const std::optional<PngForm>& wanted) {
  PngPlan plan;
  const TPixelFormat format = raster.Format();
  const bool hasAlpha = format == pf32bit && raster.alphaFormat == afDefined;
  const auto width = static_cast<size_t>(raster.Width());
  const bool wantsGray = wanted && (wanted->colorType == kGray || wanted->colorType == kGrayAlpha);
  if (wantsGray && (format == pf24bit || format == pf32bit) && IsGray(raster)) {
    plan.form = {8, hasAlpha ? kGrayAlpha : kGray, false};
    const int step = format == pf24bit ? 3 : 4;
    plan.row = [&raster, step, hasAlpha, row = MakeBuffer(width * 2)](int y) {
      TakeGray(raster.Row(y), raster.Width(), step, hasAlpha, row->data());
      return row->data();
    };
    return plan;
  }
  if (hasAlpha && wanted && wanted->colorType == kIndexed) {
    if (auto indexed = PlanPaletteAlpha(raster, *wanted)) return *std::move(indexed);
  }
  plan.form = {8, hasAlpha ? kColorAlpha : kColor, false};
  plan.isBlueFirst = true;
  plan.dropsFourth = format == pf32bit && !hasAlpha;
  if (format == pf24bit || format == pf32bit) {
    plan.row = [&raster](int y) { return raster.Row(y); };
    return plan;
  }
  plan.row = [&raster, row = std::make_shared<std::vector<RGBrec>>(width)](int y) {
    const PixelTable noTable{};
    RowTo24(raster.Row(y), raster.Format(), raster.Width(), noTable, row->data());
    return &row->data()->b;
  };
  return plan;
}

PngPlan PlanRaster(const Raster& raster, const std::optional<PngForm>& wanted) {
  return IsIndexed(raster.Format()) ? PlanIndexed(raster, wanted) : PlanColors(raster, wanted);
}

/// The color type of samples. Throws UnsupportedError if a PNG file cannot hold them.
int ColorTypeOf(const PixelLayout& layout) {
  const bool isGray =
      layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
  if (!isGray && layout.model != ColorModel::rgb) {
    throw UnsupportedError("PNG: pixels are gray, RGB or indexes of a palette");
  }
  if (layout.type != NumberType::uint8 && layout.type != NumberType::uint16) {
    throw UnsupportedError("PNG: samples are unsigned integers of up to 16 bits");
  }
  if (layout.alpha == AlphaKind::associated) {
    throw UnsupportedError("PNG: colors multiplied by alpha cannot be written");
  }
  const bool hasAlpha = layout.alpha == AlphaKind::straight;
  const int bands = (isGray ? 1 : 3) + (hasAlpha ? 1 : 0);
  if (layout.extraBands != 0 || layout.bands != bands) {
    throw UnsupportedError(
        fmt::format("PNG: {} samples per pixel cannot be written", layout.bands));
  }
  const bool isSmall =
      isGray && !hasAlpha && (layout.bits == 1 || layout.bits == 2 || layout.bits == 4);
  const bool isFull = layout.bits == static_cast<int>(BytesOf(layout.type)) * 8;
  if (!isFull && !(isSmall && layout.type == NumberType::uint8)) {
    throw UnsupportedError(fmt::format("PNG: samples of {} bits cannot be written", layout.bits));
  }
  return isGray ? (hasAlpha ? kGrayAlpha : kGray) : hasAlpha ? kColorAlpha : kColor;
}

/// Brings the samples of a row together and inverts gray where the lowest number is white.
class SampleRows {
 public:
  explicit SampleRows(const Samples& samples)
      : samples_(samples),
        sampleBytes_(BytesOf(samples.Layout().type)),
        bands_(static_cast<size_t>(samples.Layout().bands)),
        row_(static_cast<size_t>(samples.Width()) * sampleBytes_ * bands_) {}

  const uint8_t* At(int y) {
    Gather(y);
    if (samples_.Layout().model == ColorModel::grayWhiteIsZero) Invert();
    if (samples_.Layout().bits < 8) {
      PackSamples(row_.data(), samples_.Width(), samples_.Layout().bits, row_.data());
    }
    return row_.data();
  }

 private:
  void Gather(int y) {
    if (samples_.Planes() == 1) {
      std::copy_n(samples_.Row(y), row_.size(), row_.data());
      return;
    }
    for (size_t band = 0; band < bands_; band++) {
      const uint8_t* source = samples_.Row(y, static_cast<int>(band));
      uint8_t* target = row_.data() + band * sampleBytes_;
      for (int x = 0; x < samples_.Width(); x++) {
        std::copy_n(source, sampleBytes_, target);
        source += sampleBytes_;
        target += sampleBytes_ * bands_;
      }
    }
  }

  /// The first sample of each pixel; the second one is alpha.
  void Invert() {
    const auto full =
        static_cast<uint8_t>(samples_.Layout().bits >= 8 ? 255 : (1 << samples_.Layout().bits) - 1);
    for (size_t i = 0; i < row_.size(); i += sampleBytes_ * bands_) {
      for (size_t k = 0; k < sampleBytes_; k++) {
        row_[i + k] = static_cast<uint8_t>(full - row_[i + k]);
      }
    }
  }

  const Samples& samples_;
  size_t sampleBytes_, bands_;
  std::vector<uint8_t> row_;
};

PngPlan PlanSamples(const Samples& samples) {
  const PixelLayout& layout = samples.Layout();
  PngPlan plan;
  plan.form = {layout.bits, ColorTypeOf(layout), false};
  plan.hasNativeWords = layout.bits == 16 && std::endian::native == std::endian::little;
  if (samples.Planes() == 1 && layout.bits >= 8 && layout.model != ColorModel::grayWhiteIsZero) {
    plan.row = [&samples](int y) { return samples.Row(y); };
    return plan;
  }
  plan.row = [rows = std::make_shared<SampleRows>(samples)](int y) { return rows->At(y); };
  return plan;
}

}  // namespace

PngPlan PlanPng(const Pixels& pixels, const std::optional<PngForm>& wanted) {
  PngPlan plan = std::holds_alternative<Raster>(pixels)
                     ? PlanRaster(std::get<Raster>(pixels), wanted)
                     : PlanSamples(std::get<Samples>(pixels));
  plan.form.interlaced = wanted && wanted->interlaced;
  return plan;
}

}  // namespace rasterkit::detail
