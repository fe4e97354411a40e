#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/bands/colors/wider_rows.h>
#include <rasterkit/bands/corner_fill.h>
#include <rasterkit/bitmaptools/rotation/rotation_background.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

constexpr TColor kNearWhite = RGB(254, 255, 255);

uint32_t FilledPixel(const Raster& like, TColor color) {
  Raster sample(like.Format(), 1, 1);
  sample.palette = like.palette;
  FillRaster(sample, {0, 0, 1, 1}, color);
  const uint8_t* row = sample.Row(0);
  const int bits = StoredBitsPerPixel(like.Format());
  if (bits < 8) return row[0] >> (8 - bits);
  uint32_t pixel = 0;
  for (int i = 0; i < bits / 8; ++i) pixel |= uint32_t{row[i]} << (8 * i);
  return pixel;
}

bool HasEntry(const HPALETTE& palette, TColor color) {
  const auto entries = palette.Entries();
  return std::any_of(entries.begin(), entries.end(),
                     [&](const tagPALETTEENTRY& entry) { return EntryColor(entry) == color; });
}

TColor ColorWithoutEntry(const HPALETTE& palette) {
  TColor color = kNearWhite;
  while (HasEntry(palette, color)) --color;
  return color;
}

uint32_t AddTransparentEntry(Raster& raster) {
  const TColor color = ColorWithoutEntry(raster.palette);
  std::vector<tagPALETTEENTRY> entries(raster.palette.Entries().begin(),
                                       raster.palette.Entries().end());
  entries.push_back({static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
                     static_cast<uint8_t>(color >> 16), 0});
  raster.palette = HPALETTE(entries);
  raster.transparentColor = color;
  return static_cast<uint32_t>(entries.size() - 1);
}

bool HasAlphaChannel(const Raster& raster) {
  return raster.Format() == pf32bit && raster.alphaFormat == afDefined;
}

bool HasEntryOfKey(const Raster& raster) {
  return raster.transparentColor && HasEntry(raster.palette, *raster.transparentColor);
}

uint32_t PrepareTransparent(Raster& raster) {
  if (IsIndexed(raster.Format())) {
    if (HasEntryOfKey(raster)) return FilledPixel(raster, *raster.transparentColor);
    if (FitsOneMoreEntry(raster)) {
      MakeRoomForEntry(raster);
      return AddTransparentEntry(raster);
    }
  }
  TBitmap bitmap(std::move(raster));
  MakeAlphaChannel(bitmap);
  raster = bitmap.TakeContent();
  return 0;
}

uint32_t PrepareAutomatic(Raster& raster) {
  if (HasAlphaChannel(raster)) return 0;
  const bool hasKey =
      IsIndexed(raster.Format()) ? HasEntryOfKey(raster) : raster.transparentColor.has_value();
  if (hasKey) return FilledPixel(raster, *raster.transparentColor);
  // Pixels of 15 and 16 bits cannot show near-white.
  const bool isWord = raster.Format() == pf15bit || raster.Format() == pf16bit;
  if (isWord) raster = ConvertRaster(raster, pf24bit);
  const bool wasMono = raster.Format() == pf1bit;
  if (wasMono) raster = Widened(raster, pf4bit);
  TBitmap probe;
  probe.ResetPixels(raster.Format(), 1, 1);
  probe.SetPalette(raster.palette);
  const int bits = StoredBitsPerPixel(raster.Format());
  const RotationTask task{probe, probe, bits < 8 ? 0 : bits / 8, bits < 8 ? bits : 0, wasMono, -1,
                          1,     0};
  const TColor color = ChooseBackground(task);
  raster.palette = probe.Palette();
  raster.transparentColor = color;
  return FilledPixel(raster, color);
}

bool HoldsNoData(const Resampling& how, NumberType type) {
  return how.noData && WithNumberType(type, [&](auto zero) {
           return MissingNumber<decltype(zero)>(how.noData).Exists();
         });
}

[[noreturn]] void RefuseNoData() {
  throw RangeError(
      "the number for missing data does not fit into the pixels: it cannot fill corners");
}

/// The number for missing data. Throws if there is none, or none that the type holds.
double RequireNoData(const Resampling& how, NumberType type) {
  if (!how.noData) {
    throw RangeError("the picture states no number for missing data to fill corners with");
  }
  if (!HoldsNoData(how, type)) RefuseNoData();
  return *how.noData;
}

bool HoldsNoData(const Resampling& how, const Raster& raster) {
  const int bits = IsIndexed(raster.Format()) ? StoredBitsPerPixel(raster.Format()) : 8;
  return HoldsNoData(how, NumberType::uint8) && *how.noData < (1 << bits);
}

/// In a palette the number is an index.
uint32_t PixelOfNoData(const Raster& raster, const Resampling& how) {
  const auto number = NumberOf<uint8_t>(RequireNoData(how, NumberType::uint8));
  if (!HoldsNoData(how, raster)) RefuseNoData();
  if (IsIndexed(raster.Format())) return number;
  return FilledPixel(raster, RGB(number, number, number));
}

/// The color as shares of full scale, by model; for L*a*b* in its usual units.
struct Lightness {
  double l, a, b;
};

double Linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double LabRoot(double share) {
  return share > 216.0 / 24389 ? std::cbrt(share) : (share * 24389 / 27 + 16) / 116;
}

/// Under the light D50, for which the matrix of sRGB has been adapted.
Lightness LabOf(double red, double green, double blue) {
  const double r = Linear(red), g = Linear(green), b = Linear(blue);
  const double x = LabRoot((0.4360747 * r + 0.3850649 * g + 0.1430804 * b) / 0.9642200);
  const double y = LabRoot(0.2225045 * r + 0.7168786 * g + 0.0606169 * b);
  const double z = LabRoot((0.0139322 * r + 0.0971045 * g + 0.7141733 * b) / 0.8252100);
  return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

/// Stores shares of full scale as numbers of a type.
class SampleWriter {
 public:
  SampleWriter(NumberType type, std::vector<uint8_t>& bytes) : type_(type), bytes_(bytes) {}

  void Share(double share) {
    WithNumberType(type_, [&](auto zero) {
      using T = decltype(zero);
      double full = 1;
      if constexpr (std::is_integral_v<T>) {
        full = static_cast<double>(std::numeric_limits<T>::max());
      }
      Put(NumberOf<T>(share * full));
    });
  }
  /// A number whose unit is a byte's; signed ones of unsigned types are stored as two's complement.
  void ByteUnits(double value) {
    WithNumberType(type_, [&](auto zero) {
      using T = decltype(zero);
      if constexpr (std::is_integral_v<T>) {
        const double scaled = std::ldexp(value, 8 * static_cast<int>(sizeof(T)) - 8);
        Put(static_cast<T>(static_cast<int64_t>(std::floor(scaled + 0.5))));
      } else {
        Put(NumberOf<T>(value));
      }
    });
  }
  void Missing(double value) {
    WithNumberType(type_, [&](auto zero) { Put(MissingNumber<decltype(zero)>(value).Number()); });
  }

 private:
  template <class T>
  void Put(T number) {
    const auto* first = reinterpret_cast<const uint8_t*>(&number);
    bytes_.insert(bytes_.end(), first, first + sizeof number);
  }

  const NumberType type_;
  std::vector<uint8_t>& bytes_;
};

void PutLab(ColorModel model, const Lightness& color, SampleWriter& writer) {
  if (model == ColorModel::lab) {
    writer.Share(color.l / 100);
    writer.ByteUnits(color.a);
    writer.ByteUnits(color.b);
  } else if (model == ColorModel::iccLab) {
    writer.Share(color.l / 100);
    writer.ByteUnits(color.a + 128);
    writer.ByteUnits(color.b + 128);
  } else {
    writer.Share(color.l / 100);
    writer.Share(color.a / 170 + 128.0 / 255);
    writer.Share(color.b / 200 + 96.0 / 255);
  }
}

void PutColor(const PixelLayout& layout, TColor color, SampleWriter& writer) {
  const double red = (color & 255) / 255.0, green = (color >> 8 & 255) / 255.0,
               blue = (color >> 16 & 255) / 255.0;
  const double gray = 0.297 * red + 0.589 * green + 0.114 * blue;
  switch (layout.model) {
    case ColorModel::gray:
      return writer.Share(gray);
    case ColorModel::grayWhiteIsZero:
      return writer.Share(1 - gray);
    case ColorModel::rgb:
      writer.Share(red);
      writer.Share(green);
      return writer.Share(blue);
    case ColorModel::cmyk: {
      const double light = std::max({red, green, blue});
      for (const double channel : {red, green, blue}) {
        writer.Share(light == 0 ? 0 : (light - channel) / light);
      }
      return writer.Share(1 - light);
    }
    case ColorModel::lab:
    case ColorModel::iccLab:
    case ColorModel::ituLab:
      return PutLab(layout.model, LabOf(red, green, blue), writer);
    default:
      return;
  }
}

bool HasAlphaBand(const PixelLayout& layout) {
  return layout.alpha == AlphaKind::straight || layout.alpha == AlphaKind::associated;
}

Fill::Kind KindFor(const PixelLayout& layout, const Resampling& how) {
  const bool isUsual = how.fill.kind == Fill::Kind::usual;
  if (!isUsual && how.fill.kind != Fill::Kind::automatic) return how.fill.kind;
  if (HoldsNoData(how, layout.type)) return Fill::Kind::noData;
  if (isUsual) return Fill::Kind::color;
  return HasAlphaBand(layout) ? Fill::Kind::transparent : Fill::Kind::color;
}

}  // namespace

uint32_t PrepareFill(Raster& raster, const Resampling& how) {
  switch (how.fill.kind) {
    case Fill::Kind::transparent:
      return PrepareTransparent(raster);
    case Fill::Kind::noData:
      return PixelOfNoData(raster, how);
    case Fill::Kind::usual:
      return HoldsNoData(how, raster) && !HasAlphaChannel(raster)
                 ? PixelOfNoData(raster, how)
                 : FilledPixel(raster, how.fill.color);
    case Fill::Kind::automatic:
      return PrepareAutomatic(raster);
    default:
      return FilledPixel(raster, how.fill.color);
  }
}

std::vector<uint8_t> PrepareFill(Samples& samples, const Resampling& how) {
  const Fill::Kind kind = KindFor(samples.Layout(), how);
  if (kind == Fill::Kind::transparent && !HasAlphaBand(samples.Layout())) {
    samples = WithAlphaBand(samples);
  }
  const PixelLayout& layout = samples.Layout();
  const size_t size = static_cast<size_t>(layout.bands) * BytesOf(layout.type);
  std::vector<uint8_t> bytes;
  SampleWriter writer(layout.type, bytes);
  if (kind == Fill::Kind::noData) {
    const double missing = RequireNoData(how, layout.type);
    for (int band = 0; band < layout.bands; ++band) writer.Missing(missing);
  } else if (kind == Fill::Kind::color) {
    PutColor(layout, how.fill.color, writer);
    const size_t others = size - BytesOf(layout.type);
    if (HasAlphaBand(layout)) {
      bytes.resize(others);
      writer.Share(1);
    }
  }
  bytes.resize(size);
  return bytes;
}

std::string NumberOfCorners(const PixelLayout& layout, const Resampling& how) {
  if (KindFor(layout, how) != Fill::Kind::color) return {};
  std::vector<uint8_t> bytes;
  SampleWriter writer(layout.type, bytes);
  PutColor(layout, how.fill.color, writer);
  return WithNumberType(layout.type, [&](auto zero) {
    using T = decltype(zero);
    const T number = LoadNumber<T>(bytes.data());
    if constexpr (std::is_same_v<T, Half>) {
      return fmt::format("{}", ValueOf(number));
    } else {
      return fmt::format("{}", number);
    }
  });
}

}  // namespace rasterkit::detail
