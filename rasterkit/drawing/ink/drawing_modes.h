#pragma once

#include <cstdint>

/// The modes of a drawing context. Each enumerator has the number that metafiles write, so that a
/// reader casts; a number without a name is ignored by the setter that gets it.
namespace rasterkit {

/// What a unit of the page is. Text: a pixel, y downward. The metric ones: 0.1 mm, 0.01 mm,
/// 0.01 inch, 0.001 inch, 1/1440 inch, y upward. Isotropic and anisotropic: by window and viewport.
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

/// How a matrix changes the world transform. Left: the matrix is applied first, then what was
/// there; right: the other way round.
enum class WorldChange : uint32_t { identity = 1, left = 2, right = 3, set = 4 };

/// Compatible: letters stand upright on the device, whatever the axes do, and are as wide as their
/// height asks for. Advanced: letters follow every transform, mirrored and slanted.
enum class GraphicsMode : uint32_t { compatible = 1, advanced = 2 };

/// Whether gaps of hatches and dashes, and what lies behind letters, get the background colour.
enum class BackgroundMode : uint32_t { transparent = 1, opaque = 2 };

/// Which points lie inside a polygon that crosses itself.
enum class PolygonFill : uint32_t { alternate = 1, winding = 2 };

/// What a shrunken bitmap makes of the pixels that have no place; all but halftone take one of
/// them.
enum class StretchMode : uint32_t {
  blackOnWhite = 1,
  whiteOnBlack = 2,
  dropPixels = 3,
  halftone = 4
};

enum class ArcDirection : uint32_t { counterclockwise = 1, clockwise = 2 };

/// How a region or path meets the clipping region.
enum class RegionMode : uint32_t {
  intersection = 1,
  unite = 2,
  exclusiveOr = 3,
  difference = 4,
  copy = 5
};

/// What the numbers of a region count: pixels of the recording device, or the units of the page.
enum class RegionUnit { device, logical };

/// How a flood fill knows where to end: at pixels of the colour, or at pixels of any other colour.
enum class FloodFill : uint32_t { toBorder = 0, overSurface = 1 };

/// How pen and brush meet the picture: bit (2 pen + picture) of (number - 1) is the result.
/// `copyPen` is the usual one.
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

/// Raster operations with three operands, as metafiles write them: bits 16 to 23 are the truth
/// table, bit (4 brush + 2 source + picture) of it the result; the low word says nothing more.
namespace rop3 {
inline constexpr uint32_t sourceCopy = 0x00CC0020;
inline constexpr uint32_t sourceAnd = 0x008800C6;
inline constexpr uint32_t sourcePaint = 0x00EE0086;
inline constexpr uint32_t sourceInvert = 0x00660046;
inline constexpr uint32_t patternCopy = 0x00F00021;
inline constexpr uint32_t patternInvert = 0x005A0049;
inline constexpr uint32_t destinationInvert = 0x00550009;
inline constexpr uint32_t blackness = 0x00000042;
inline constexpr uint32_t whiteness = 0x00FF0062;
}  // namespace rop3

/// Which point of a text its reference point is: a sum of one of each group.
namespace text_align {
inline constexpr uint32_t updatePosition = 1;
inline constexpr uint32_t left = 0, right = 2, center = 6, horizontal = 6;
inline constexpr uint32_t top = 0, bottom = 8, baseline = 24, vertical = 24;
inline constexpr uint32_t rightToLeft = 256;
}  // namespace text_align

/// How a text is drawn: a sum.
namespace text_option {
inline constexpr uint32_t opaque = 0x0002;        ///< the rectangle gets the background colour
inline constexpr uint32_t clipped = 0x0004;       ///< letters show inside the rectangle only
inline constexpr uint32_t glyphIndexes = 0x0010;  ///< numbers of the font's pictures, no characters
inline constexpr uint32_t rightToLeft = 0x0080;   ///< the line as a whole runs to the left
inline constexpr uint32_t asOrdered = 0x1000;     ///< letters are in the order they are seen in
inline constexpr uint32_t pairs = 0x2000;         ///< the steps have a vertical part as well
}  // namespace text_option

/// Mirrors the page left to right when bit 0 is set.
inline constexpr uint32_t kLayoutRightToLeft = 1;

}  // namespace rasterkit
