#include <fmt/format.h>

#include <rasterkit/codecs/png/png_encoding.h>
#include <rasterkit/codecs/png/png_frame.h>
#include <rasterkit/codecs/png/png_header.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

void WriteBlocks(png_structp png, const std::vector<OtherBlock>& blocks) {
  for (const OtherBlock& block : blocks) {
    png_byte name[5] = {};
    for (int i = 0; i < 4; i++) name[i] = static_cast<png_byte>(block.kind >> (24 - 8 * i));
    png_write_chunk(png, name, block.bytes.data(), block.bytes.size());
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

PixelLayout LayoutOf(const PngPlan& plan, bool hasKeyColor, const ColorProfile& profile) {
  const bool isPaletteAlpha = !plan.opacities.empty();
  const PngForm seen = isPaletteAlpha ? PngForm{8, PNG_COLOR_TYPE_RGB_ALPHA, false} : plan.form;
  PixelLayout layout = PngLayout({1, 1, seen});
  if (!isPaletteAlpha) layout.palette = PaletteOf(plan);
  layout.profile = profile;
  if (layout.alpha == AlphaKind::none && hasKeyColor) layout.alpha = AlphaKind::transparentColor;
  return layout;
}

}  // namespace

std::optional<PngForm> PngFrame::WantedForm(const PictureWriting& writing) {
  const auto* form = std::get_if<PngForm>(&writing.form);
  return form != nullptr ? std::optional(*form) : std::nullopt;
}

std::optional<TColor> PngFrame::KeyColorOf(const Pixels& pixels) {
  const auto* raster = std::get_if<Raster>(&pixels);
  if (!raster || !raster->transparentColor || *raster->transparentColor < 0) return std::nullopt;
  if (raster->Format() == pf32bit && raster->alphaFormat == afDefined) return std::nullopt;
  return raster->transparentColor;
}

PngFrame::PngFrame(const PngPlan& plan, WrittenSize size, std::optional<TColor> keyColor,
                   const PictureWriting& writing, TStream& stream)
    : plan_(plan), size_(size), keyColor_(keyColor), writer_(stream) {
  written_ = {plan.form, LayoutOf(plan, keyColor_.has_value(), writing.metadata.profile), {}};
  const std::optional<PngForm> wanted = WantedForm(writing);
  if (wanted && *wanted != plan.form) {
    written_.changes.Note(
        fmt::format("written as {} instead of {}", NameOf(plan.form), NameOf(*wanted)));
  }
  PngBlockRules rules;
  rules.form = plan.form;
  // In a palette that was made anew the index of the background means another color.
  rules.paletteEntries = plan.opacities.empty() ? static_cast<int>(plan.palette.size()) : 0;
  blocks_ = MakePngBlocks(writing.metadata, rules, written_.changes);
}

void PngFrame::SetKeyColor() {
  if (!plan_.opacities.empty()) {
    png_set_tRNS(writer_.Png(), writer_.Info(), plan_.opacities.data(),
                 static_cast<int>(plan_.opacities.size()), nullptr);
  } else if (keyColor_) {
    SetPngKeyColor(writer_.Png(), writer_.Info(), {plan_.form.colorType, plan_.form.bits},
                   plan_.palette, *keyColor_);
  }
}

void PngFrame::WriteFront(int level) {
  png_structp png = writer_.Png();
  png_infop info = writer_.Info();
  writer_.Run([&] {
    SetPngCompression(png, {plan_.form.colorType, plan_.form.bits}, level);
    png_set_IHDR(png, info, static_cast<png_uint_32>(size_.width),
                 static_cast<png_uint_32>(size_.height), plan_.form.bits, plan_.form.colorType,
                 plan_.form.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!plan_.palette.empty()) {
      png_set_PLTE(png, info, plan_.palette.data(), static_cast<int>(plan_.palette.size()));
    }
    SetKeyColor();
    png_write_info_before_PLTE(png, info);
    WriteBlocks(png, blocks_.beforePalette);
    png_write_info(png, info);
    WriteBlocks(png, blocks_.beforePixels);
  });
}

void PngFrame::WriteData(std::span<const uint8_t> packed) {
  writer_.Run([&] {
    png_write_chunk(writer_.Png(), reinterpret_cast<png_const_bytep>("IDAT"), packed.data(),
                    packed.size());
  });
}

void PngFrame::WritePixels(const Pixels& pixels) {
  png_structp png = writer_.Png();
  writer_.Run([&] {
    if (plan_.isBlueFirst) png_set_bgr(png);
    if (plan_.hasNativeWords) png_set_swap(png);
    if (plan_.dropsFourth) png_set_filler(png, 0, PNG_FILLER_AFTER);
    const int passes = plan_.form.interlaced ? png_set_interlace_handling(png) : 1;
    for (int pass = 0; pass < passes; pass++) {
      for (int y = 0; y < size_.height; y++) {
        RequireTime();
        png_write_row(png, plan_.row(pixels, y));
      }
    }
  });
}

void PngFrame::WriteBack() {
  writer_.Run([&] {
    WriteBlocks(writer_.Png(), blocks_.behindPixels);
    // The end as libpng writes it, which does not know of chunks that it has not packed.
    png_write_chunk(writer_.Png(), reinterpret_cast<png_const_bytep>("IEND"), nullptr, 0);
  });
}

}  // namespace rasterkit::detail
