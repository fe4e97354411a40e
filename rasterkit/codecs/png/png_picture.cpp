#include <fmt/format.h>

#include <rasterkit/codecs/png/png_blocks.h>
#include <rasterkit/codecs/png/png_encoding.h>
#include <rasterkit/codecs/png/png_header.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/png/png_plan.h>
#include <rasterkit/codecs/png/png_writer.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using namespace detail;

void WriteBlocks(png_structp png, const std::vector<OtherBlock>& blocks) {
  for (const OtherBlock& block : blocks) {
    png_byte name[5] = {};
    for (int i = 0; i < 4; i++) name[i] = static_cast<png_byte>(block.kind >> (24 - 8 * i));
    png_write_chunk(png, name, block.bytes.data(), block.bytes.size());
  }
}

/// The transparent color. Beside an alpha channel it has no meaning, and a negative color is a
/// system color, which a file cannot hold.
std::optional<TColor> KeyColorOf(const Pixels& pixels) {
  const auto* raster = std::get_if<Raster>(&pixels);
  if (!raster || !raster->transparentColor || *raster->transparentColor < 0) return std::nullopt;
  if (raster->Format() == pf32bit && raster->alphaFormat == afDefined) return std::nullopt;
  return raster->transparentColor;
}

void SetKeyColor(png_structp png, png_infop info, const Pixels& pixels, const PngPlan& plan) {
  if (!plan.opacities.empty()) {
    png_set_tRNS(png, info, plan.opacities.data(), static_cast<int>(plan.opacities.size()),
                 nullptr);
    return;
  }
  if (const auto color = KeyColorOf(pixels)) {
    SetPngKeyColor(png, info, {plan.form.colorType, plan.form.bits}, plan.palette, *color);
  }
}

void WriteRows(png_structp png, const PngPlan& plan, int height) {
  if (plan.isBlueFirst) png_set_bgr(png);
  if (plan.hasNativeWords) png_set_swap(png);
  if (plan.dropsFourth) png_set_filler(png, 0, PNG_FILLER_AFTER);
  const int passes = plan.form.interlaced ? png_set_interlace_handling(png) : 1;
  for (int pass = 0; pass < passes; pass++) {
    for (int y = 0; y < height; y++) {
      RequireTime();
      png_write_row(png, plan.row(y));
    }
  }
}

/// "8-bit gray".
std::string NameOf(const PngForm& form) {
  const char* model = "RGB";
  if (form.colorType == PNG_COLOR_TYPE_GRAY) model = "gray";
  if (form.colorType == PNG_COLOR_TYPE_PALETTE) model = "palette";
  if (form.colorType == PNG_COLOR_TYPE_GRAY_ALPHA) model = "gray with alpha";
  if (form.colorType == PNG_COLOR_TYPE_RGB_ALPHA) model = "RGB with alpha";
  return fmt::format("{}-bit {}", form.bits, model);
}

HPALETTE PaletteOf(const PngPlan& plan) {
  std::vector<tagPALETTEENTRY> entries;
  for (const png_color& color : plan.palette) {
    entries.push_back({color.red, color.green, color.blue, 0});
  }
  return HPALETTE(entries);
}

PixelLayout LayoutOf(const PngPlan& plan, const Pixels& pixels, const ColorProfile& profile) {
  const bool isPaletteAlpha = !plan.opacities.empty();
  const PngForm seen = isPaletteAlpha ? PngForm{8, PNG_COLOR_TYPE_RGB_ALPHA, false} : plan.form;
  PixelLayout layout = PngLayout({1, 1, seen});
  if (!isPaletteAlpha) layout.palette = PaletteOf(plan);
  layout.profile = profile;
  if (layout.alpha == AlphaKind::none && KeyColorOf(pixels)) {
    layout.alpha = AlphaKind::transparentColor;
  }
  return layout;
}

}  // namespace

WrittenPicture WritePng(const Pixels& pixels, const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  const int width = WidthOf(pixels), height = HeightOf(pixels);
  if (width == 0 || height == 0) {
    throw FormatError("PNG: an empty picture cannot be written");
  }
  std::optional<PngForm> wanted;
  if (const auto* form = std::get_if<PngForm>(&writing.form)) wanted = *form;
  const PngPlan plan = PlanPng(pixels, wanted);
  WrittenPicture written{plan.form, LayoutOf(plan, pixels, writing.metadata.profile), {}};
  if (wanted && *wanted != plan.form) {
    written.changes.Note(
        fmt::format("written as {} instead of {}", NameOf(plan.form), NameOf(*wanted)));
  }
  PngBlockRules rules;
  rules.form = plan.form;
  // In a palette that was made anew the index of the background means another color.
  rules.paletteEntries = plan.opacities.empty() ? static_cast<int>(plan.palette.size()) : 0;
  const PngBlocks blocks = MakePngBlocks(writing.metadata, rules, written.changes);

  PngWriter writer(stream);
  png_structp png = writer.Png();
  png_infop info = writer.Info();
  writer.Run([&] {
    SetPngCompression(png, {plan.form.colorType, plan.form.bits}, -1);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
                 plan.form.bits, plan.form.colorType,
                 plan.form.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!plan.palette.empty()) {
      png_set_PLTE(png, info, plan.palette.data(), static_cast<int>(plan.palette.size()));
    }
    SetKeyColor(png, info, pixels, plan);
    png_write_info_before_PLTE(png, info);
    WriteBlocks(png, blocks.beforePalette);
    png_write_info(png, info);
    WriteBlocks(png, blocks.beforePixels);
    WriteRows(png, plan, height);
    WriteBlocks(png, blocks.behindPixels);
    png_write_end(png, nullptr);
  });
  return written;
}

}  // namespace rasterkit
