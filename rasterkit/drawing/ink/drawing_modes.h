#pragma once

#include <cstdint>

/// The modes of a drawing context. Enumerators have the numbers that metafiles store, so that
/// readers can cast; setters ignore a number without an enumerator.
namespace rasterkit {

/// The unit of the page. `text`: one pixel, y downward. The metric modes: 0.1 mm, 0.01 mm, 0.01
/// inch, 0.001 inch and 1/1440 inch, y upward. `isotropic` and `anisotropic`: set by window and
/// viewport.
enum class MapMode : uint32_t {
  text = 1,
  loMetric = 2,
  hiMetric = 3,
  loEnglish = 4,
  hiEnglish = 5,
  twips = 6,
  isotropic = 7,
  anisotropic = 8
};

/// How a matrix changes the world transform. `left`: the matrix is applied before the current
/// transform; `right`: after it.
enum class WorldChange : uint32_t { identity = 1, left = 2, right = 3, set = 4 };

/// Compatible: letters stand upright on the device, regardless of the direction of the axes, and
/// their width follows from their height. Advanced: letters follow all transforms, including
/// mirroring and shear.
enum class GraphicsMode : uint32_t { compatible = 1, advanced = 2 };

/// Whether gaps of hatches and dashes, and the area behind letters, get the background color.
enum class BackgroundMode : uint32_t { transparent = 1, opaque = 2 };

/// Which points lie inside a polygon that crosses itself.
enum class PolygonFill : uint32_t { alternate = 1, winding = 2 };

/// How a shrunken bitmap treats pixels that are dropped; all modes but halftone pick one pixel.
enum class StretchMode : uint32_t {
  blackOnWhite = 1,
  whiteOnBlack = 2,
  dropPixels = 3,
  halftone = 4
};

enum class ArcDirection : uint32_t { counterclockwise = 1, clockwise = 2 };

/// How a region or path is combined with the clipping region.
enum class RegionMode : uint32_t {
  intersection = 1,
  unite = 2,
  exclusiveOr = 3,
  difference = 4,
  copy = 5
};

/// The unit of a region: pixels of the recording device, or logical units.
enum class RegionUnit { device, logical };

/// Where a flood fill stops: at pixels of the color, or at pixels of any other color.
enum class FloodFill : uint32_t { toBorder = 0, overSurface = 1 };

/// How pen and brush are combined with the picture: bit (2 pen + picture) of (number - 1) is the
/// result. The default is `copyPen`.
enum class Rop2 : uint32_t {
  black = 1,
  notMergePen = 2,
  maskNotPen = 3,
  notCopyPen = 4,
  maskPenNot = 5,
  invert = 6,
  xorPen = 7,
  notMaskPen = 8,
  maskPen = 9,
  notXorPen = 10,
  nop = 11,
  mergeNotPen = 12,
  copyPen = 13,
  mergePenNot = 14,
  mergePen = 15,
  white = 16
};

/// Ternary raster operations as stored in metafiles: bits 16 to 23 are the truth table, whose bit
/// (4 brush + 2 source + picture) is the result. The low word is redundant.
namespace rop3 {
inline constexpr uint32_t kSourceCopy = 0x00CC0020;
inline constexpr uint32_t kSourceAnd = 0x008800C6;
inline constexpr uint32_t kSourcePaint = 0x00EE0086;
inline constexpr uint32_t kSourceInvert = 0x00660046;
inline constexpr uint32_t kPatternCopy = 0x00F00021;
inline constexpr uint32_t kPatternInvert = 0x005A0049;
inline constexpr uint32_t kDestinationInvert = 0x00550009;
inline constexpr uint32_t kBlackness = 0x00000042;
inline constexpr uint32_t kWhiteness = 0x00FF0062;
}  // namespace rop3

/// Which point of the text its reference point is: the sum of one flag of each group.
namespace text_align {
inline constexpr uint32_t kUpdatePosition = 1;
inline constexpr uint32_t kLeft = 0, kRight = 2, kCenter = 6, kHorizontal = 6;
inline constexpr uint32_t kTop = 0, kBottom = 8, kBaseline = 24, kVertical = 24;
inline constexpr uint32_t kRightToLeft = 256;
}  // namespace text_align

/// Text options, to be added.
namespace text_option {
inline constexpr uint32_t kOpaque = 0x0002;   ///< fills the rectangle with the background color
inline constexpr uint32_t kClipped = 0x0004;  ///< clips the text to the rectangle
inline constexpr uint32_t kGlyphIndexes = 0x0010;  ///< glyph indexes instead of characters
inline constexpr uint32_t kRightToLeft = 0x0080;   ///< right-to-left text direction
inline constexpr uint32_t kAsOrdered = 0x1000;     ///< characters are in visual order
inline constexpr uint32_t kPairs = 0x2000;         ///< steps also have a vertical part
}  // namespace text_option

/// Mirrors the page horizontally if bit 0 is set.
inline constexpr uint32_t kLayoutRightToLeft = 1;

}  // namespace rasterkit
