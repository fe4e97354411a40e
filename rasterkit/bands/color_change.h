#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>

/// Changes of color: one plain struct each, so that a list of them can be stored.
namespace rasterkit {

/// Gray. Palettes keep their depth; true color becomes 8-bit unless `trueColor`.
struct MakeGray {
  bool trueColor = false;
};

/// Black and white at a gray threshold, 0 to 256.
struct MakeMono {
  /// Nothing: chosen by Otsu's rule.
  std::optional<int> threshold = 125;
  TColor dark = clBlack, light = clWhite;
};

/// Percentages, -100 to 100, applied in this order.
struct AdjustColors {
  int brightness = 0, contrast = 0, sharpen = 0, red = 0, green = 0, blue = 0;
};

/// Pixels with a gray value above the threshold become white.
struct WhitenLight {
  int threshold = 0;
  bool makesTransparent = false;
};

/// Pixels above (or below, if `darker`) the threshold get a color, and an opacity if given.
struct RecolorByGray {
  int threshold = 0;
  bool darker = false;
  TColor color = clBlack;
  std::optional<int> alpha;
};

/// The color of the bottom left pixel is replaced everywhere.
struct ReplaceKeyColor {
  TColor color = clWhite;
  bool makesTransparent = false;
};

/// White becomes the transparent color of PDF exports.
struct WhiteForPdf {};

/// Transparent parts are painted with the color.
struct PaintTransparency {
  TColor background = clWhite;
};

/// Transparent and visible pixels are exchanged.
struct SwapOpacity {};

/// Entries of the palette get other colors.
struct SetPaletteEntries {
  std::vector<std::pair<int, TColor>> entries;
  /// New color of the entry that the top left pixel uses.
  std::optional<TColor> first;
};

/// Another depth: 1, 4, 8, 24 or 32 bits per pixel.
struct SetBits {
  int bits = 24;
};

/// 8 bits per pixel with this palette of 1 to 256 entries: each pixel gets the nearest one.
/// Transparent parts are painted white first.
struct UsePalette {
  HPALETTE palette;
};

using ColorChange = std::variant<MakeGray, MakeMono, AdjustColors, WhitenLight, RecolorByGray,
                                 ReplaceKeyColor, WhiteForPdf, PaintTransparency, SwapOpacity,
                                 SetPaletteEntries, SetBits, UsePalette>;

}  // namespace rasterkit
