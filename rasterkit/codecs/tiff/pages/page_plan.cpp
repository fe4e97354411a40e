#include <algorithm>

#include <fmt/format.h>
#include <tiffio.h>

#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/codecs/tiff/pages/form_choice.h>
#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/codecs/tiff/pages/page_plan.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/codecs/tiff/tiff_plan.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

/// The kind of the stored samples and how they come from the pixels.
class Planner {
 public:
  Planner(const Pixels& pixels, WrittenSize size, const TiffForm* wanted) : wanted_(wanted) {
    plan_.width = static_cast<uint32_t>(size.width);
    plan_.height = static_cast<uint32_t>(size.height);
    if (size.width < 1 || size.height < 1) {
      throw FormatError("TIFF: an empty picture cannot be written");
    }
    if (const auto* raster = std::get_if<Raster>(&pixels)) {
      PlanRaster(*raster);
    } else {
      PlanSamples(std::get<Samples>(pixels));
    }
  }
  PagePlan Take() { return std::move(plan_); }

 private:
  int WantedPhotometric() const { return wanted_ ? wanted_->photometric : -1; }
  void SetKind(int photometric, ColorModel model, int bits, int samples) {
    plan_.form.photometric = photometric;
    plan_.layout.model = model;
    plan_.layout.bits = bits;
    plan_.layout.bands = samples;
    plan_.bits = static_cast<uint16_t>(bits);
    plan_.samples = static_cast<uint16_t>(samples);
  }
  void PlanRaster(const Raster& raster);
  void PlanIndexed(const Raster& raster, int bits);
  void PlanPalette(const HPALETTE& palette, int bits);
  void PlanSamples(const Samples& samples);
  void PlanExtraSamples();

  const TiffForm* const wanted_;
  PagePlan plan_;
};

void Planner::PlanPalette(const HPALETTE& palette, int bits) {
  SetKind(PHOTOMETRIC_PALETTE, ColorModel::palette, bits, 1);
  plan_.layout.palette = palette;
  plan_.colorMap = ColorMapOf(palette, bits);
}

void Planner::PlanIndexed(const Raster& raster, int bits) {
  const bool isRamp = HasColors(raster.palette, GrayPalette(1 << bits));
  const bool isReversed = bits == 1 && IsWhiteAndBlack(raster.palette);
  if ((!isRamp && !isReversed) || WantedPhotometric() == PHOTOMETRIC_PALETTE) {
    return PlanPalette(raster.palette, bits);
  }
  const bool isWhiteZero = WantedPhotometric() == PHOTOMETRIC_MINISWHITE ||
                           (isReversed && WantedPhotometric() != PHOTOMETRIC_MINISBLACK);
  plan_.isInverted = isWhiteZero != isReversed;
  if (isWhiteZero) return SetKind(PHOTOMETRIC_MINISWHITE, ColorModel::grayWhiteIsZero, bits, 1);
  SetKind(PHOTOMETRIC_MINISBLACK, ColorModel::gray, bits, 1);
  if (bits == 1 && WantedPhotometric() == PHOTOMETRIC_MASK) {
    plan_.form.photometric = PHOTOMETRIC_MASK;
  }
}

void Planner::PlanRaster(const Raster& raster) {
  plan_.layout.profile = raster.profile;
  switch (raster.Format()) {
    case pf1bit:
    case pf4bit:
    case pf8bit:
      return PlanIndexed(raster, StoredBitsPerPixel(raster.Format()));
    case pf24bit:
      return SetKind(PHOTOMETRIC_RGB, ColorModel::rgb, 8, 3);
    case pf32bit:
      if (raster.alphaFormat != afDefined) {
        return SetKind(PHOTOMETRIC_RGB, ColorModel::rgb, 8, 3);
      }
      SetKind(PHOTOMETRIC_RGB, ColorModel::rgb, 8, 4);
      plan_.layout.alpha = AlphaKind::straight;
      plan_.extraSamples = {EXTRASAMPLE_UNASSALPHA};
      return;
    default:
      throw UnsupportedError("TIFF: pixels of 15 or 16 bits cannot be written");
  }
}

uint16_t FormatOf(NumberType type) {
  switch (type) {
    case NumberType::int8:
    case NumberType::int16:
    case NumberType::int32:
    case NumberType::int64:
      return SAMPLEFORMAT_INT;
    case NumberType::float16:
    case NumberType::float32:
    case NumberType::float64:
      return SAMPLEFORMAT_IEEEFP;
    default:
      return SAMPLEFORMAT_UINT;
  }
}

int PhotometricOf(ColorModel model, int wanted) {
  constexpr int kLinearRaw = 34892;
  switch (model) {
    case ColorModel::grayWhiteIsZero:
      return PHOTOMETRIC_MINISWHITE;
    case ColorModel::rgb:
      return PHOTOMETRIC_RGB;
    case ColorModel::palette:
      return PHOTOMETRIC_PALETTE;
    case ColorModel::cmyk:
      return PHOTOMETRIC_SEPARATED;
    case ColorModel::lab:
      return PHOTOMETRIC_CIELAB;
    case ColorModel::iccLab:
      return PHOTOMETRIC_ICCLAB;
    case ColorModel::ituLab:
      return PHOTOMETRIC_ITULAB;
    case ColorModel::other:
      if (wanted == PHOTOMETRIC_SEPARATED || wanted == kLinearRaw) return wanted;
      return PHOTOMETRIC_MINISBLACK;
    case ColorModel::gray:
      break;
  }
  return wanted == PHOTOMETRIC_MASK ? PHOTOMETRIC_MASK : PHOTOMETRIC_MINISBLACK;
}

void Planner::PlanExtraSamples() {
  int colors = ColorsOf(plan_.layout.model);
  if (plan_.layout.model == ColorModel::other) {
    colors = plan_.form.photometric == PHOTOMETRIC_MINISBLACK
                 ? 1
                 : plan_.samples - (plan_.layout.alpha == AlphaKind::none ? 0 : 1);
  }
  if (plan_.samples < colors) {
    throw UnsupportedError(
        fmt::format("TIFF: {} bands are too few for this kind of color", plan_.samples));
  }
  plan_.extraSamples.assign(static_cast<size_t>(plan_.samples - colors), EXTRASAMPLE_UNSPECIFIED);
  if (plan_.extraSamples.empty()) return;
  if (plan_.layout.alpha == AlphaKind::straight) plan_.extraSamples.back() = EXTRASAMPLE_UNASSALPHA;
  if (plan_.layout.alpha == AlphaKind::associated) {
    plan_.extraSamples.back() = EXTRASAMPLE_ASSOCALPHA;
  }
}

void Planner::PlanSamples(const Samples& samples) {
  plan_.layout = samples.Layout();
  const PixelLayout& layout = plan_.layout;
  const int room = static_cast<int>(8 * BytesOf(layout.type));
  constexpr int kMostBands = 65535;
  const bool isFloat = FormatOf(layout.type) == SAMPLEFORMAT_IEEEFP;
  if (layout.bits < 1 || layout.bits > room || (layout.bits < room && (isFloat || room > 32)) ||
      layout.bands > kMostBands) {
    throw UnsupportedError(
        fmt::format("TIFF: {} samples of {} bits cannot be written", layout.bands, layout.bits));
  }
  plan_.bits = static_cast<uint16_t>(layout.bits);
  plan_.samples = static_cast<uint16_t>(layout.bands);
  plan_.sampleFormat = FormatOf(layout.type);
  plan_.form.photometric = PhotometricOf(layout.model, WantedPhotometric());
  if (layout.model == ColorModel::palette) {
    if (layout.bits > 8 || !layout.palette) {
      throw UnsupportedError("TIFF: palette indexes without a palette cannot be written");
    }
    plan_.colorMap = ColorMapOf(layout.palette, layout.bits);
  }
  PlanExtraSamples();
}

}  // namespace

bool PagePlan::IsJpegOfColor() const {
  return form.compression == COMPRESSION_JPEG && form.photometric == PHOTOMETRIC_YCBCR;
}

uint64_t PagePlan::MostBytes() const {
  // LZW has codes of up to 12 bits per byte, G4 12 bits per two pixels, G3 some more and the ends
  // of lines; the others add a few bytes per block.
  uint64_t growth = 17;
  if (form.compression == COMPRESSION_NONE) growth = 16;
  if (form.compression == COMPRESSION_LZW) growth = 25;
  if (bits == 1 && form.compression != COMPRESSION_LZW && form.compression != COMPRESSION_NONE) {
    growth = 16 * 6 + 1;
  }
  const uint64_t rows = SaturatedProduct(BlockRowBytes(), BlockHeight());
  constexpr uint64_t kBlockSpare = 1024;
  const uint64_t block = rows > UINT64_MAX / growth ? UINT64_MAX : rows * growth / 16 + kBlockSpare;
  return SaturatedProduct(block, Blocks());
}

PagePlan PlanPage(const Pixels& pixels, const Form& wanted, Changes& changes) {
  return PlanPage(pixels, {WidthOf(pixels), HeightOf(pixels)}, wanted, changes);
}

PagePlan PlanPage(const Pixels& like, WrittenSize size, const Form& wanted, Changes& changes) {
  const auto* form = std::get_if<TiffForm>(&wanted);
  PagePlan plan = Planner(like, size, form).Take();
  ChooseForm(form ? *form : FormFor(TiffCompression::standard, LayoutOf(like)), plan, changes);
  return plan;
}

}  // namespace rasterkit::detail
