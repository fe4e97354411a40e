#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

class Raster;
class TBitmap;
class TGraphic;
struct MetafileFacts;

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

/// How `StretchDraw` and `CopyStretched` compute the color of a pixel. smPlain takes the nearest
/// source pixel. smHalftone takes the exact average of the covered area along an axis that shrinks,
/// and interpolates linearly between the two nearest pixels along an axis that grows, in integers,
/// halves rounded up. It is meant for true color: an indexed bitmap gets the nearest entry of the
/// mean. If a side exceeds 2^22 pixels, the nearest pixel is taken.
enum TStretchMode { smPlain, smHalftone };

/// How `AlphaBlend` mixes. The opacity a of a source pixel is SourceConstantAlpha / 255, times its
/// own alpha / 255 if PerPixelAlpha is set and the source is 32-bit, regardless of its alpha mark.
/// Each channel becomes round(s a + t (1 - a)) in integers, the alpha of a 32-bit target round(255
/// a + t (1 - a)).
struct TBlendFunction {
  uint8_t SourceConstantAlpha = 255;
  bool PerPixelAlpha = false;
};

/// Draws onto a bitmap. Everything is clipped to the bitmap. On an indexed bitmap a color becomes
/// the nearest entry (least sum of squares, lowest index); on a 32-bit bitmap opaque drawing writes
/// alpha 255. Negative colors are the host's system colors.
///
/// If a rectangle `dest` shows the rectangle `src` of a source, a pixel takes the source pixel
/// under its center. The picture is mirrored if right lies before left or bottom above top in one
/// of the two. Pixels whose source pixel does not exist stay as they are. Empty rectangles draw
/// nothing; any numbers are allowed. The source may be the canvas's own bitmap; its pixels before
/// drawing are then used.
class RASTERKIT_EXPORT TCanvas {
 public:
  explicit TCanvas(TBitmap& bitmap) : bitmap_(&bitmap) {}

  TPen Pen;
  TBrush Brush;
  TStretchMode StretchMode = smPlain;

  /// Fills the rectangle with the brush.
  void FillRect(const TRect& rect);
  /// Fills with the brush and draws the outline inside with the pen. With a clear pen the right
  /// column and the bottom row of the rectangle are not painted: pass one more than the size.
  void Rectangle(int left, int top, int right, int bottom);
  /// Draws lines from point to point with the pen, both ends included. Every pixel is painted once,
  /// so drawing again in XOR mode removes the lines.
  void Polyline(std::span<const TPoint> points);
  /// Draws a graphic at its own size with the top-left corner at (x, y), honoring transparency.
  void Draw(int x, int y, const TGraphic& graphic);
  /// Draws a graphic stretched into the rectangle by `StretchMode`, honoring transparency: a
  /// defined alpha channel is blended (smHalftone weights colors by it); else a transparent color
  /// is skipped, and then pixels are not averaged.
  void StretchDraw(const TRect& rect, const TGraphic& graphic);
  /// Draws rows stretched into the rectangle by `StretchMode` (mirrored if right lies before left
  /// or bottom above top). A defined alpha channel is blended; else pixels of the key color
  /// 0x00BBGGRR are skipped.
  void DrawRaster(const TRect& rect, const Raster& raster, std::optional<TColor> key);

  /// Plays the records of a metafile so that its picture fills the rectangle (mirrored when right
  /// lies before left or bottom above top). What the records do not paint stays as it was. Throws
  /// as PlayMetafile does.
  void DrawMetafile(const TRect& rect, std::span<const uint8_t> metafile);
  /// Plays a metafile whose facts are known: what ReadMetafileFacts returns for these bytes.
  void DrawMetafile(const TRect& rect, std::span<const uint8_t> metafile,
                    const MetafileFacts& facts);

  /// Blends the part `src` of a bitmap into `dest`, by nearest pixels if they differ in size.
  /// Pixels of opacity 0 change nothing.
  void AlphaBlend(const TRect& dest, const TBitmap& source, const TRect& src,
                  const TBlendFunction& blend);
  /// Draws the part `src` of a bitmap into `dest`, without pixels of the color `key` (as precisely
  /// as the source's format can hold it). Ignores the alpha of the source.
  void TransparentBlt(const TRect& dest, const TBitmap& source, const TRect& src, TColor key);
  /// Replaces the pixels whose centers lie in the parallelogram by the part `src` of a bitmap,
  /// alpha included. `corners` are where the upper left, upper right and lower left corner of the
  /// part go; a target pixel takes the source pixel at the floor of its mapped center, and the left
  /// and upper edges belong to the part. For instance corners (w, 0), (0, 0), (w, h) mirror a part
  /// w x h left to right. Nothing is drawn when a corner lies beyond 2^27.
  void PlgBlt(const std::array<TPoint, 3>& corners, const TBitmap& source, const TRect& src);
  /// Replaces `dest` by the whole of a bitmap, stretched as `StretchMode` says: no blending and no
  /// transparent color, and a 32-bit bitmap keeps its alpha. smHalftone weights the colors of a
  /// 32-bit bitmap by its alpha, regardless of its alpha mark, where any of it is not 0.
  void CopyStretched(const TRect& dest, const TBitmap& source);

 private:
  friend class TBitmap;

  void DrawFrame(const TRect& rect);
  template <class Action>
  void DrawFrom(const Raster& source, Action draw);

  TBitmap* bitmap_;
};

}  // namespace rasterkit
