#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/bands/flow/executor.h>
#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/pictures/fitting/fit_pixels.h>
#include <rasterkit/pictures/fitting/fit_stages.h>
#include <rasterkit/raster/convert.h>

namespace rasterkit::detail {
namespace {

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

/// True for samples that become colors of 8 bits.
bool IsShown(PictureType type, const Pixels& pixels) {
  const auto* samples = std::get_if<Samples>(&pixels);
  return samples != nullptr && !HoldsSamples(type, samples->Layout());
}

/// PNG has no samples of 10 or 12 bits.
bool IsWidened(PictureType type, const Pixels& pixels) {
  const auto* samples = std::get_if<Samples>(&pixels);
  if (samples == nullptr || type != PictureType::png) return false;
  const PixelLayout& layout = samples->Layout();
  if (layout.model == ColorModel::palette) return false;
  return (layout.type == NumberType::uint8 && layout.bits < 8) ||
         (layout.type == NumberType::uint16 && layout.bits < 16);
}

bool IsInk(ColorModel model) {
  return model == ColorModel::cmyk || model == ColorModel::lab || model == ColorModel::iccLab ||
         model == ColorModel::ituLab;
}

bool HasAlpha(const Raster& rows) {
  return rows.Format() == pf32bit && rows.alphaFormat == afDefined;
}

/// True if transparent parts must be painted.
bool IsPainted(PictureType type, const Pixels& pixels) {
  const auto* rows = std::get_if<Raster>(&pixels);
  const Codec* codec = FindCodec(type);
  if (rows == nullptr || codec == nullptr || codec->keepsAlpha) return false;
  return HasAlpha(*rows) || (rows->transparentColor && !codec->keepsTransparentColor);
}

/// True if the mark of a transparent color is dropped.
bool LacksMark(PictureType type, const Raster& rows) {
  const Codec* codec = FindCodec(type);
  return !HasAlpha(rows) && rows.transparentColor && codec != nullptr && codec->keepsAlpha &&
         !codec->keepsTransparentColor;
}

/// True if the encoder takes other rows than these.
bool IsConverted(PictureType type, const Pixels& pixels) {
  const auto* rows = std::get_if<Raster>(&pixels);
  if (rows == nullptr || type == PictureType::bmp) return false;
  const TPixelFormat format = rows->Format();
  if (type != PictureType::jpeg) return format == pf15bit || format == pf16bit;
  return format != pf24bit && !(format == pf8bit && IsGrayRamp(rows->palette));
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

void Append(const Changes& more, Changes& changes) {
  changes.losses.insert(changes.losses.end(), more.losses.begin(), more.losses.end());
  changes.notes.insert(changes.notes.end(), more.notes.begin(), more.notes.end());
}

/// A pixel of this kind. Its content is that of a new picture.
Pixels PixelLike(const Pixels& like) {
  Pixels pixel = NewPixels(like, 1, 1);
  std::visit([](auto& rows) { std::fill_n(rows.Row(0), rows.Stride(), uint8_t{0}); }, pixel);
  return pixel;
}

}  // namespace

bool IsFit(const Pixels& like, const PixelFit& fit) {
  return !IsShown(fit.type, like) && !IsWidened(fit.type, like) && !IsPainted(fit.type, like) &&
         !IsConverted(fit.type, like);
}

Stages FitStages(const Pixels& like, Sides sides, const PixelFit& fit,
                 const std::shared_ptr<Changes>& lost) {
  Stages stages;
  Pixels pixel = PixelLike(like);
  // What a stage makes of one pixel shows what the next one gets.
  const auto add = [&](const auto& make, auto isNeeded) {
    if (!isNeeded(pixel)) return;
    Changes unused;
    pixel = make(Sides{1, 1})->Make(std::move(pixel), {}, unused);
    stages.push_back(StageOf(sides, {make(sides), isNeeded}, lost));
  };
  const PictureType type = fit.type;
  add([&](Sides size) { return ShowStage(size, fit); },
      [type](const Pixels& pixels) { return IsShown(type, pixels); });
  add([&](Sides size) { return WidenStage(size, fit); },
      [type](const Pixels& pixels) { return IsWidened(type, pixels); });
  add([&](Sides size) { return PaintStage(size, fit); },
      [type](const Pixels& pixels) { return IsPainted(type, pixels); });
  add([&](Sides size) { return FormatStage(size, type); },
      [type](const Pixels& pixels) { return IsConverted(type, pixels); });
  return stages;
}

void FitKind(Pixels& like, const PixelLayout& stored, const PixelFit& fit, Metadata& metadata,
             Changes& changes) {
  auto* rows = std::get_if<Raster>(&like);
  if (rows != nullptr) {
    if (IsInk(stored.model)) metadata.profile = nullptr;
    if (LacksMark(fit.type, *rows)) {
      changes.Lose(LossKind::transparentColor, "the mark of the transparent color",
                   NameInLosses(fit.type) + " has no such mark");
      rows->transparentColor.reset();
    }
  }
  FitProfile(metadata, LayoutOf(like), changes);
  if (rows != nullptr) rows->profile = metadata.profile;
}

Pixels FitPixels(Pixels pixels, const PixelFit& fit, Metadata& metadata, Changes& changes) {
  const PixelLayout stored = LayoutOf(pixels);
  const Sides sides{WidthOf(pixels), HeightOf(pixels)};
  const auto lost = std::make_shared<Changes>();
  const Stages stages = FitStages(pixels, sides, fit, lost);
  Changes unused;
  pixels = RunStages(std::move(pixels), stages, {fit.threads, {}}, unused);
  Append(*lost, changes);
  FitKind(pixels, stored, fit, metadata, changes);
  return pixels;
}

}  // namespace rasterkit::detail
