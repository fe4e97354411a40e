#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <rasterkit/host/raster/pixel_format.h>
#include <rasterkit/host/runtime/export.h>

namespace rasterkit {

class Raster;
class TBitmap;
class TGraphic;

/// A rectangle of pixels; right and bottom lie outside.
struct TRect {
  int Left = 0, Top = 0, Right = 0, Bottom = 0;
};

struct TPoint {
  int X = 0, Y = 0;
};

enum TPenStyle { psSolid, psClear };
enum TPenMode { pmCopy, pmXor };
enum TBrushStyle { bsSolid, bsClear };

struct TPen {
  TColor Color = clBlack;
  int Width = 1;
  TPenStyle Style = psSolid;
  TPenMode Mode = pmCopy;
};

struct TBrush {
  TColor Color = clWhite;
  TBrushStyle Style = bsSolid;
};

/// Draws onto a bitmap. Everything is clipped to the bitmap. On an indexed bitmap a colour becomes
/// the nearest entry (least sum of squares, lowest index); on a 32-bit bitmap opaque drawing writes
/// alpha 255. Negative colours are the host's system colours.
class RASTERKIT_EXPORT TCanvas {
 public:
  explicit TCanvas(TBitmap& bitmap) : bitmap_(&bitmap) {}

  TPen Pen;
  TBrush Brush;

  /// Fills the rectangle with the brush.
  void FillRect(const TRect& rect);
  /// Fills with the brush and draws the outline inside with the pen. With a clear pen the right
  /// column and the bottom row of the rectangle are not painted, which is why callers pass one more
  /// than the size.
  void Rectangle(int left, int top, int right, int bottom);
  /// Draws the lines from point to point with the pen, both ends included. Every pixel is painted
  /// once, so that drawing again in XOR mode takes the lines away.
  void Polyline(std::span<const TPoint> points);
  /// Draws a graphic at its own size with the top-left corner at (x, y), honouring transparency.
  void Draw(int x, int y, const TGraphic& graphic);
  /// Draws a graphic stretched into the rectangle (nearest pixel), honouring transparency.
  void StretchDraw(const TRect& rect, const TGraphic& graphic);
  /// Draws rows stretched into the rectangle (nearest pixel; mirrored when right lies before left
  /// or bottom above top): blended when they have an alpha channel that is defined, else without
  /// the pixels of the key colour 0x00BBGGRR.
  void DrawRaster(const TRect& rect, const Raster& raster, std::optional<TColor> key);

 private:
  friend class TBitmap;

  void DrawFrame(const TRect& rect);

  TBitmap* bitmap_;
};

}  // namespace rasterkit
