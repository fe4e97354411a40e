#pragma once

#include <string>

#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

class Raster;
class TBitmap;
class TCanvas;
struct TRect;

/// Whether the transparent color follows the bottom-left pixel or was set.
enum TTransparentMode { tmAuto, tmFixed };

/// The common base of all picture kinds. It can be drawn, loaded, saved and assigned to another
/// kind.
///
/// Loading and saving by file name adds the name to every error that passes; saving is atomic. A
/// failed load leaves the graphic as it was.
///
/// `Modified` becomes true with every change through the class's own routines (pixels written
/// through row pointers cannot be seen) and false with loading and with saving to a file.
class RASTERKIT_EXPORT TGraphic {
 public:
  virtual ~TGraphic() = default;
  TGraphic(const TGraphic&) = delete;
  TGraphic& operator=(const TGraphic&) = delete;

  /// Size in pixels; a graphic without content is 0 x 0.
  virtual int Width() const = 0;
  virtual int Height() const = 0;
  bool Empty() const { return Width() == 0 || Height() == 0; }
  /// The rows that the graphic shows, where it holds such; null for one that must be drawn first.
  /// They belong to the graphic and stay until it changes.
  virtual const Raster* Rows() const { return nullptr; }

  /// Takes over what `source` shows, with its transparency, mode and color; an absent source
  /// empties the graphic. Throws UnsupportedError for a pair without a rule (a bitmap into a
  /// metafile).
  void Assign(const TGraphic* source);

  virtual void LoadFromFile(const std::string& fileName);
  virtual void SaveToFile(const std::string& fileName);
  /// Reads from the stream's position to its end.
  virtual void LoadFromStream(TStream& stream) = 0;
  /// Writes at the stream's position, which is left at the end of what was written.
  virtual void SaveToStream(TStream& stream) = 0;

  /// Draws the graphic stretched into the rectangle of the canvas. Rows with a defined alpha
  /// channel are blended; else the pixels of the transparent color are left out when the graphic
  /// is `Transparent`.
  virtual void DrawTo(TCanvas& canvas, const TRect& place) const;

  virtual bool Transparent() const { return transparent_; }
  virtual void SetTransparent(bool value) { transparent_ = value; }
  TTransparentMode TransparentMode() const { return transparentMode_; }
  void SetTransparentMode(TTransparentMode mode) { transparentMode_ = mode; }
  /// The color taken as transparent: in automatic mode the bottom-left pixel's, else the one that
  /// was set.
  virtual TColor TransparentColor() const;
  /// Sets the color and makes the mode fixed.
  virtual void SetTransparentColor(TColor color);

  /// Transparent, TransparentMode and TransparentColor as `source` has them.
  void AssignTransparency(const TGraphic& source);

  bool Modified() const { return modified_; }
  void SetModified(bool value) { modified_ = value; }

  /// Makes `target` show this graphic, transparency included: what `TBitmap::Assign` of this
  /// graphic does. The target stays as it was when that fails.
  virtual void AssignToBitmap(TBitmap& target) const = 0;

 protected:
  TGraphic() = default;
  TGraphic(TGraphic&&) noexcept = default;
  TGraphic& operator=(TGraphic&&) noexcept = default;

  /// The part of `Assign` that knows the concrete class; `source` is never null and never this
  /// graphic.
  virtual void AssignFrom(const TGraphic& source) = 0;
  /// Drops all content.
  virtual void Clear() = 0;

  bool transparent_ = false;
  TTransparentMode transparentMode_ = tmAuto;
  TColor transparentColor_ = clWhite;
  bool modified_ = false;
};

}  // namespace rasterkit
