#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <rasterkit/raster/raster.h>

/// Objects that are selected into a drawing context. They are shared and immutable; an object may
/// be deleted from a table while it is selected.
namespace rasterkit {

/// The brush that fills areas.
struct LogicalBrush {
  enum Kind {
    solid,
    null,     ///< fills nothing
    hatched,  ///< lines in `color`, gaps by the background mode
    pattern   ///< the bitmap in tiles, from the brush origin
  };
  Kind kind = solid;
  TColor color = clWhite;
  /// 0 horizontal, 1 vertical, 2 falling diagonal \, 3 rising diagonal /, 4 cross, 5 diagonal
  /// cross. Lines are eight pixels apart. Other numbers fill solidly.
  int hatch = 0;
  std::shared_ptr<const Raster> bitmap;  ///< any format; not null for `pattern`
  /// If true, a 1-bit bitmap ignores its palette: at the time of drawing, 0 becomes the text color
  /// and 1 the background color.
  bool isMono = false;
};

/// Values of a pen's `style` as stored in metafiles: the sum of one value of each group.
namespace pen_style {
inline constexpr uint32_t kSolid = 0, kDash = 1, kDot = 2, kDashDot = 3, kDashDotDot = 4, kNull = 5,
                          kInsideFrame = 6, kUser = 7, kAlternate = 8, kLine = 0x0F;
inline constexpr uint32_t kRoundCap = 0, kSquareCap = 0x100, kFlatCap = 0x200, kCap = 0xF00;
inline constexpr uint32_t kRoundJoin = 0, kBevelJoin = 0x1000, kMiterJoin = 0x2000, kJoin = 0xF000;
inline constexpr uint32_t kGeometric = 0x10000;
}  // namespace pen_style

/// The pen that draws lines. A geometric pen has its width in logical units and its own caps and
/// joins. A cosmetic pen wider than one pixel of the device is drawn as a solid round pen of that
/// width. A thinner cosmetic pen may be dashed; width 0 means one pixel of the device. It is never
/// drawn thinner than one pixel of the raster.
struct LogicalPen {
  uint32_t style = pen_style::kSolid;
  double width = 0;  ///< logical units; 0: one pixel of the device
  TColor color = clBlack;
  /// Lengths of dashes and gaps in turn, for the `user` style: in logical units for a geometric
  /// pen, in pixels of the device for a cosmetic one. At most 16 are used.
  std::vector<double> dashes;
  /// The brush that a geometric pen draws with instead of `color`, or null.
  std::shared_ptr<const LogicalBrush> brush;
};

/// The font of texts.
struct LogicalFont {
  /// In logical units. Negative: the height of the em square; positive: of a line, from the highest
  /// to the lowest letter; 0: 12 points.
  double height = 0;
  double width = 0;        ///< average width of a letter in logical units; 0: the font's own
  double escapement = 0;   ///< direction of the line, 0.1 degrees counter-clockwise
  double orientation = 0;  ///< direction of a letter; where it differs, the line's is used
  int32_t weight = 400;    ///< 100 to 900; 0: normal
  bool italic = false, underline = false, strikeOut = false;
  uint8_t charset = 1;  ///< 0 western, 1 default, 2 symbols, and so on
  /// Bits 0-1: 1 fixed pitch. Bits 4-7: 1 serif, 2 sans serif, 3 typewriter.
  uint8_t pitchAndFamily = 0;
  std::string faceName;  ///< UTF-8
};

/// The device that a metafile was recorded for.
struct ReferenceDevice {
  double widthPx = 1024, heightPx = 768;
  double widthMm = 320, heightMm = 240;
};

}  // namespace rasterkit
