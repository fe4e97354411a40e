#include <algorithm>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/bands/stages.h>
#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/pictures/fitting/fit_pixels.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// The name of a format in messages.
std::string NameOf(PictureType type) {
  switch (type) {
    case PictureType::bmp:
      return "a BMP file";
    case PictureType::jpeg:
      return "a JPEG file";
    case PictureType::png:
      return "a PNG file";
    default:
      return "the file";
  }
}

bool IsGray(ColorModel model) {
  return model == ColorModel::gray || model == ColorModel::grayWhiteIsZero;
}

/// True if the encoder takes samples of this kind as they are.
bool HoldsSamples(PictureType type, const PixelLayout& layout) {
  switch (type) {
    case PictureType::tiff:
      return true;
    case PictureType::png: {
      const bool isWhole = layout.type == NumberType::uint8 || layout.type == NumberType::uint16;
      const bool isColor = IsGray(layout.model) || layout.model == ColorModel::rgb ||
                           layout.model == ColorModel::palette;
      return isWhole && isColor && layout.extraBands == 0 && layout.alpha != AlphaKind::associated;
    }
    case PictureType::jpeg:
      return layout.type == NumberType::uint8 && layout.model == ColorModel::cmyk &&
             layout.bands == 4 && layout.bits == 8;
    default:
      return false;
  }
}

/// Numbers of fewer bits than their type become those of the whole range, which loses nothing.
template <class Number>
void Widen(Samples& samples) {
  constexpr uint32_t kMost = std::numeric_limits<Number>::max();
  const uint32_t most = (1u << samples.Layout().bits) - 1;
  const size_t count = samples.Stride() / sizeof(Number);
  for (int plane = 0; plane < samples.Planes(); ++plane) {
    for (int y = 0; y < samples.Height(); ++y) {
      RequireTime();
      auto* const row = reinterpret_cast<Number*>(samples.Row(y, plane));
      for (size_t i = 0; i < count; ++i) {
        row[i] = static_cast<Number>((uint64_t{row[i]} * kMost + most / 2) / most);
      }
    }
  }
  samples.Layout().bits = static_cast<int>(sizeof(Number)) * 8;
}

/// PNG has no samples of 10 or 12 bits.
void WidenForPng(Samples& samples) {
  const PixelLayout& layout = samples.Layout();
  if (layout.model == ColorModel::palette) return;
  if (layout.type == NumberType::uint8 && layout.bits < 8) Widen<uint8_t>(samples);
  if (layout.type == NumberType::uint16 && layout.bits < 16) Widen<uint16_t>(samples);
}

/// The letters of an ICC profile's color space: "RGB ", "GRAY", "CMYK".
std::string SpaceOf(const ColorProfile& profile) {
  constexpr size_t kAt = 16, kLetters = 4;
  if (!profile || profile->size() < kAt + kLetters) return {};
  return {profile->begin() + kAt, profile->begin() + kAt + kLetters};
}

/// A profile for colors says nothing about grays, and the other way round.
void FitProfile(Metadata& metadata, const PixelLayout& layout, Changes& changes) {
  const std::string space = SpaceOf(metadata.profile);
  if (space.empty()) return;
  const bool isGray = IsGray(layout.model);
  const bool isRgb = layout.model == ColorModel::rgb || layout.model == ColorModel::palette;
  const bool fits = (space == "GRAY" && isGray) || (space == "RGB " && isRgb) ||
                    (space == "CMYK" && layout.model == ColorModel::cmyk) ||
                    (space == "Lab " && !isGray && !isRgb);
  if (fits || (!isGray && !isRgb)) return;
  metadata.profile = nullptr;
  if (space == "RGB " && isGray) {
    return changes.Note("the color profile does not apply to gray pixels and is not written");
  }
  changes.Lose(LossKind::profile, fmt::format("{} profile", space == "GRAY" ? "gray" : "ink"),
               "it does not apply to the new pixels");
}

Raster Visible(Pixels pixels, const PixelFit& fit, Metadata& metadata, Changes& changes) {
  const PixelLayout before = LayoutOf(pixels);
  const bool wasInk = before.model == ColorModel::cmyk || before.model == ColorModel::lab ||
                      before.model == ColorModel::iccLab || before.model == ColorModel::ituLab;
  Changes seen;
  Raster rows = VisiblePixels(std::move(pixels), fit.noData, seen, fit.stretch);
  for (Loss& loss : seen.losses) changes.losses.push_back(std::move(loss));
  for (std::string& note : seen.notes) {
    if (!fit.isSample) changes.Note(std::move(note));
  }
  if (wasInk) {
    metadata.profile = nullptr;
    rows.profile = nullptr;
  }
  return rows;
}

Raster Painted(Raster rows, const PixelFit& fit, Changes& changes) {
  const Sides sides{rows.Width(), rows.Height()};
  const ColorProfile profile = rows.profile;
  Changes unused;
  Pixels painted = ChangeStage(sides, PaintTransparency{fit.background})
                       ->Make(std::move(rows), {fit.threads, {}}, unused);
  changes.losses.insert(changes.losses.end(), unused.losses.begin(), unused.losses.end());
  auto& result = std::get<Raster>(painted);
  result.profile = profile;
  return std::move(result);
}

Raster FitTransparency(Raster rows, const PixelFit& fit, Changes& changes) {
  const Codec* codec = FindCodec(fit.type);
  const bool hasAlpha = rows.Format() == pf32bit && rows.alphaFormat == afDefined;
  if (hasAlpha && codec != nullptr && !codec->keepsAlpha) {
    changes.Lose(LossKind::alpha, "the alpha channel",
                 NameOf(fit.type) + " holds no opacity: painted onto the background");
    return Painted(std::move(rows), fit, changes);
  }
  if (hasAlpha || !rows.transparentColor || codec == nullptr || codec->keepsTransparentColor) {
    return rows;
  }
  if (codec->keepsAlpha) {
    changes.Lose(LossKind::transparentColor, "the mark of the transparent color",
                 NameOf(fit.type) + " has no such mark");
    rows.transparentColor.reset();
    return rows;
  }
  changes.Lose(LossKind::transparentColor, "the transparent color",
               NameOf(fit.type) + " holds no opacity: painted onto the background");
  return Painted(std::move(rows), fit, changes);
}

bool IsGrayPalette(const Raster& rows) {
  const auto entries = rows.palette.Entries();
  return !entries.empty() && std::all_of(entries.begin(), entries.end(), [](const auto& entry) {
    return entry.peRed == entry.peGreen && entry.peRed == entry.peBlue;
  });
}

/// Formats of rows that encoders take.
Raster FitFormat(Raster rows, PictureType type) {
  const TPixelFormat format = rows.Format();
  const bool isShort = format == pf15bit || format == pf16bit;
  if (type == PictureType::bmp) return rows;
  if (type != PictureType::jpeg) return isShort ? ConvertRaster(rows, pf24bit) : std::move(rows);
  if (format == pf24bit || (format == pf8bit && IsGrayRamp(rows.palette))) return rows;
  const bool isGray = IsIndexed(format) && IsGrayPalette(rows);
  Raster colors = ConvertRaster(rows, pf24bit);
  return isGray ? ConvertRaster(colors, pf8bit) : std::move(colors);
}

}  // namespace

Pixels FitPixels(Pixels pixels, const PixelFit& fit, Metadata& metadata, Changes& changes) {
  auto* samples = std::get_if<Samples>(&pixels);
  if (samples != nullptr) {
    if (HoldsSamples(fit.type, samples->Layout())) {
      if (fit.type == PictureType::png) WidenForPng(*samples);
      FitProfile(metadata, samples->Layout(), changes);
      return pixels;
    }
    pixels = Visible(std::move(pixels), fit, metadata, changes);
  }
  Raster rows = FitTransparency(std::get<Raster>(std::move(pixels)), fit, changes);
  rows = FitFormat(std::move(rows), fit.type);
  pixels = std::move(rows);
  FitProfile(metadata, LayoutOf(pixels), changes);
  std::get<Raster>(pixels).profile = metadata.profile;
  return pixels;
}

}  // namespace rasterkit::detail
