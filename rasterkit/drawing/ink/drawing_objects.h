#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <rasterkit/raster/raster.h>

/// What is selected into a drawing context. Objects are shared and never changed once selected; who
/// keeps a table of them may forget one while it is selected.
namespace rasterkit {

/// What areas are filled with.
struct LogicalBrush {
  enum Kind {
    solid,
    null,     ///< nothing is filled
    hatched,  ///< lines in `color`, gaps by the background mode
    pattern   ///< the bitmap side by side, from the brush origin
  };
  Kind kind = solid;
  TColor color = clWhite;
  /// 0 horizontal, 1 vertical, 2 falling diagonal \, 3 rising diagonal /, 4 cross, 5 diagonal
  /// cross; lines are eight pixels apart. Other numbers fill solidly.
  int hatch = 0;
  std::shared_ptr<const Raster> bitmap;  ///< any format; not null for `pattern`
  /// A bitmap of 1 bit takes the text colour for 0 and the background colour for 1 at the time of
  /// drawing instead of its palette.
  bool isMono = false;
};

/// What a pen's `style` says, as metafiles write it: one of each group, added.
namespace pen_style {
inline constexpr uint32_t solid = 0, dash = 1, dot = 2, dashDot = 3, dashDotDot = 4, null = 5,
                          insideFrame = 6, user = 7, alternate = 8, line = 0x0F;
inline constexpr uint32_t roundCap = 0, squareCap = 0x100, flatCap = 0x200, cap = 0xF00;
inline constexpr uint32_t roundJoin = 0, bevelJoin = 0x1000, miterJoin = 0x2000, join = 0xF000;
inline constexpr uint32_t geometric = 0x10000;
}  // namespace pen_style

/// What lines are drawn with. A geometric pen has its width in logical units and its own caps and
/// joins; any other of a width above one pixel of the device is a solid round pen of that width.
/// Below that it is a cosmetic one, which has dashes: one pixel of the device wide where the width
/// is 0, else that width, and never less than a pixel of the raster.
struct LogicalPen {
  uint32_t style = pen_style::solid;
  double width = 0;  ///< logical units; 0: one pixel of the device
  TColor color = clBlack;
  /// Lengths of dashes and gaps in turn, for the `user` style: logical units of a geometric pen,
  /// pixels of the device of a cosmetic one. At most 16 are used.
  std::vector<double> dashes;
  /// What a geometric pen draws with instead of `color`, or null.
  std::shared_ptr<const LogicalBrush> brush;
};

/// What letters are drawn with.
struct LogicalFont {
  /// Logical units. Negative: the height of the em square; positive: of a line from the highest to
  /// the lowest letter; 0: 12 points.
  double height = 0;
  double width = 0;        ///< average width of a letter in logical units; 0: as designed
  double escapement = 0;   ///< of the line, in 0.1 degrees against the clock
  double orientation = 0;  ///< of a letter; taken for the line's as well where they differ
  int32_t weight = 400;    ///< 100 to 900; 0: normal
  bool italic = false, underline = false, strikeOut = false;
  uint8_t charset = 1;  ///< 0 western, 1 default, 2 symbols, and so on
  uint8_t pitchAndFamily =
      0;                 ///< bits 0-1: 1 fixed pitch; bits 4-7: 1 serifs, 2 none, 3 typewriter
  std::string faceName;  ///< UTF-8
};

/// What a metafile was recorded for.
struct ReferenceDevice {
  double widthPx = 1024, heightPx = 768;
  double widthMm = 320, heightMm = 240;
};

}  // namespace rasterkit
