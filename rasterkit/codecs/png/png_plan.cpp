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
#include <rasterkit/codecs/rows/palette_entries_of_file.h>
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

/// `entries` of the palette are written at least.
PngPlan PlanIndexed(const Raster& raster, int width, int entries,
                    const std::optional<PngForm>& wanted) {
  const int bits = StoredBitsPerPixel(raster.Format());
  PngPlan plan;
  plan.palette = PngPaletteOf(raster, entries);
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
    plan.row = [](const Pixels& rows, int y) { return std::get<Raster>(rows).Row(y); };
    return plan;
  }
  const auto bytes = static_cast<size_t>(width);
  // Eight more: the last byte of a row can hold more indexes than the row has.
  plan.row = [fileBits, indexes = MakeBuffer(bytes + 8), packed = MakeBuffer(bytes)](
                 const Pixels& rows, int y) -> const uint8_t* {
    const auto& raster = std::get<Raster>(rows);
    UnpackIndexes(raster.Row(y), raster.Format(), raster.Width(), indexes->data());
    PackSamples(indexes->data(), raster.Width(), fileBits, packed->data());
    return packed->data();
  };
  return plan;
}

/// The same without a look at the pixels. Nothing if the form depends on the largest index.
std::optional<PngPlan> PlanIndexedRows(const Raster& like, int width,
                                       const std::optional<PngForm>& wanted) {
  const int bits = StoredBitsPerPixel(like.Format()), most = 1 << bits;
  const int count = std::min(like.palette.Count(), most);
  if (count < most && wanted) {
    const bool canShrink = wanted->colorType == kIndexed && wanted->bits < bits;
    const bool canBeGray = wanted->colorType == kGray && like.palette == GrayPalette(count);
    if (canShrink || canBeGray) return std::nullopt;
  }
  PngPlan plan = PlanIndexed(like, width, std::max(1, count), wanted);
  plan.followsIndexes = count < most;
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
  plan.row = [bits = plan.form.bits, indexes = std::move(indexes),
              row = MakeBuffer(static_cast<size_t>(raster.Width()))](const Pixels& rows,
                                                                     int y) -> const uint8_t* {
    const auto& raster = std::get<Raster>(rows);
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

bool IsGrayForm(const std::optional<PngForm>& wanted) {
  return wanted && (wanted->colorType == kGray || wanted->colorType == kGrayAlpha);
}

bool HasAlpha(const Raster& raster) {
  return raster.Format() == pf32bit && raster.alphaFormat == afDefined;
}

/// Of a raster whose pixels are all gray.
PngPlan PlanGray(const Raster& raster) {
  PngPlan plan;
  const bool hasAlpha = HasAlpha(raster);
  plan.form = {8, hasAlpha ? kGrayAlpha : kGray, false};
  plan.row = [step = raster.Format() == pf24bit ? 3 : 4, hasAlpha,
              row = MakeBuffer(static_cast<size_t>(raster.Width()) * 2)](const Pixels& rows,
                                                                         int y) -> const uint8_t* {
    const auto& raster = std::get<Raster>(rows);
    TakeGray(raster.Row(y), raster.Width(), step, hasAlpha, row->data());
    return row->data();
  };
  return plan;
}

/// True color, whatever the pixels are.
PngPlan PlanTrueColor(const Raster& raster, int width) {
  PngPlan plan;
  const TPixelFormat format = raster.Format();
  const bool hasAlpha = HasAlpha(raster);
  plan.form = {8, hasAlpha ? kColorAlpha : kColor, false};
  plan.isBlueFirst = true;
  plan.dropsFourth = format == pf32bit && !hasAlpha;
  if (format == pf24bit || format == pf32bit) {
    plan.row = [](const Pixels& rows, int y) { return std::get<Raster>(rows).Row(y); };
    return plan;
  }
  plan.row = [row = std::make_shared<std::vector<RGBrec>>(static_cast<size_t>(width))](
                 const Pixels& rows, int y) -> const uint8_t* {
    const auto& raster = std::get<Raster>(rows);
    const PixelTable noTable{};
    RowTo24(raster.Row(y), raster.Format(), raster.Width(), noTable, row->data());
    return &row->data()->b;
  };
  return plan;
}

PngPlan PlanColors(const Raster& raster, const std::optional<PngForm>& wanted) {
  const TPixelFormat format = raster.Format();
  if (IsGrayForm(wanted) && (format == pf24bit || format == pf32bit) && IsGray(raster)) {
    return PlanGray(raster);
  }
  if (HasAlpha(raster) && wanted && wanted->colorType == kIndexed) {
    if (auto indexed = PlanPaletteAlpha(raster, *wanted)) return *std::move(indexed);
  }
  return PlanTrueColor(raster, raster.Width());
}

std::optional<PngPlan> PlanColorRows(const Raster& like, int width,
                                     const std::optional<PngForm>& wanted) {
  const bool canBeGray =
      IsGrayForm(wanted) && (like.Format() == pf24bit || like.Format() == pf32bit);
  const bool canBeIndexed = HasAlpha(like) && wanted && wanted->colorType == kIndexed;
  if (canBeGray || canBeIndexed) return std::nullopt;
  return PlanTrueColor(like, width);
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
  SampleRows(const PixelLayout& layout, int width)
      : layout_(layout),
        sampleBytes_(BytesOf(layout.type)),
        bands_(static_cast<size_t>(layout.bands)),
        row_(static_cast<size_t>(width) * sampleBytes_ * bands_) {}

  const uint8_t* At(const Samples& samples, int y) {
    Gather(samples, y);
    if (layout_.model == ColorModel::grayWhiteIsZero) Invert();
    if (layout_.bits < 8) {
      PackSamples(row_.data(), samples.Width(), layout_.bits, row_.data());
    }
    return row_.data();
  }

 private:
  void Gather(const Samples& samples, int y) {
    if (samples.Planes() == 1) {
      std::copy_n(samples.Row(y), row_.size(), row_.data());
      return;
    }
    for (size_t band = 0; band < bands_; band++) {
      const uint8_t* source = samples.Row(y, static_cast<int>(band));
      uint8_t* target = row_.data() + band * sampleBytes_;
      for (int x = 0; x < samples.Width(); x++) {
        std::copy_n(source, sampleBytes_, target);
        source += sampleBytes_;
        target += sampleBytes_ * bands_;
      }
    }
  }

  /// The first sample of each pixel; the second one is alpha.
  void Invert() {
    const auto full = static_cast<uint8_t>(layout_.bits >= 8 ? 255 : (1 << layout_.bits) - 1);
    for (size_t i = 0; i < row_.size(); i += sampleBytes_ * bands_) {
      for (size_t k = 0; k < sampleBytes_; k++) {
        row_[i + k] = static_cast<uint8_t>(full - row_[i + k]);
      }
    }
  }

  const PixelLayout layout_;
  size_t sampleBytes_, bands_;
  std::vector<uint8_t> row_;
};

PngPlan PlanSamples(const Samples& like, int width) {
  const PixelLayout& layout = like.Layout();
  PngPlan plan;
  plan.form = {layout.bits, ColorTypeOf(layout), false};
  plan.hasNativeWords = layout.bits == 16 && std::endian::native == std::endian::little;
  if (like.Planes() == 1 && layout.bits >= 8 && layout.model != ColorModel::grayWhiteIsZero) {
    plan.row = [](const Pixels& rows, int y) { return std::get<Samples>(rows).Row(y); };
    return plan;
  }
  plan.row = [rows = std::make_shared<SampleRows>(layout, width)](const Pixels& pixels, int y) {
    return rows->At(std::get<Samples>(pixels), y);
  };
  return plan;
}

}  // namespace

PngPlan PlanPng(const Pixels& pixels, const std::optional<PngForm>& wanted) {
  PngPlan plan;
  if (const auto* samples = std::get_if<Samples>(&pixels)) {
    plan = PlanSamples(*samples, samples->Width());
  } else {
    const auto& raster = std::get<Raster>(pixels);
    plan = IsIndexed(raster.Format())
               ? PlanIndexed(raster, raster.Width(), PaletteEntriesOfFile(raster), wanted)
               : PlanColors(raster, wanted);
  }
  plan.form.interlaced = wanted && wanted->interlaced;
  return plan;
}

std::optional<PngPlan> PlanPngRows(const Pixels& like, int width,
                                   const std::optional<PngForm>& wanted) {
  std::optional<PngPlan> plan;
  if (const auto* samples = std::get_if<Samples>(&like)) {
    plan = PlanSamples(*samples, width);
  } else {
    const auto& raster = std::get<Raster>(like);
    plan = IsIndexed(raster.Format()) ? PlanIndexedRows(raster, width, wanted)
                                      : PlanColorRows(raster, width, wanted);
  }
  if (plan) plan->form.interlaced = wanted && wanted->interlaced;
  return plan;
}

}  // namespace rasterkit::detail
