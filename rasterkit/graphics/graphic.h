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

/// Whether the transparent color is that of the bottom-left pixel or was set.
enum TTransparentMode { tmAuto, tmFixed };

/// Base class of all graphics, which can be drawn, loaded, saved and assigned to a graphic of
/// another class.
///
/// Loading and saving by file name add the name to every error. Saving is atomic. A failed load
/// leaves the graphic as it was.
///
/// `Modified` becomes true with every change through the class's own routines, but not when pixels
/// are written through row pointers. It becomes false by loading and by saving to a file.
class RASTERKIT_EXPORT TGraphic {
 public:
  virtual ~TGraphic() = default;
  TGraphic(const TGraphic&) = delete;
  TGraphic& operator=(const TGraphic&) = delete;

  /// Size in pixels; a graphic without content is 0 x 0.
  virtual int Width() const = 0;
  virtual int Height() const = 0;
  bool Empty() const { return Width() == 0 || Height() == 0; }
  /// Rows that the graphic shows; null for a graphic that must be drawn first. The graphic owns
  /// them; they are valid until it changes.
  virtual const Raster* Rows() const { return nullptr; }

  /// Takes over the picture of `source` with its transparency, mode and color; null empties the
  /// graphic. Throws UnsupportedError if the class cannot take the picture (a bitmap into a
  /// metafile).
  void Assign(const TGraphic* source);

  virtual void LoadFromFile(const std::string& fileName);
  virtual void SaveToFile(const std::string& fileName);
  /// Reads from the stream's position to its end.
  virtual void LoadFromStream(TStream& stream) = 0;
  /// Writes at the stream's position, which is after the written bytes then.
  virtual void SaveToStream(TStream& stream) = 0;

  /// Draws the graphic stretched into a rectangle of the canvas. Rows with a defined alpha channel
  /// are blended. Else pixels of the transparent color are skipped if the graphic is `Transparent`.
  virtual void DrawTo(TCanvas& canvas, const TRect& place) const;

  virtual bool Transparent() const { return transparency_.isOn; }
  virtual void SetTransparent(bool value) { transparency_.isOn = value; }
  TTransparentMode TransparentMode() const { return transparency_.mode; }
  void SetTransparentMode(TTransparentMode mode) { transparency_.mode = mode; }
  /// Color that counts as transparent: in automatic mode that of the bottom-left pixel, else the
  /// one that was set.
  virtual TColor TransparentColor() const;
  /// Sets the color and makes the mode fixed.
  virtual void SetTransparentColor(TColor color);

  /// Copies Transparent, TransparentMode and TransparentColor of `source`.
  void AssignTransparency(const TGraphic& source);

  bool Modified() const { return modified_; }
  void SetModified(bool value) { modified_ = value; }

  /// Assigns this graphic to `target`, transparency included, as `TBitmap::Assign` does. The target
  /// stays as it was if that fails.
  virtual void AssignToBitmap(TBitmap& target) const = 0;

 protected:
  TGraphic() = default;
  TGraphic(TGraphic&&) noexcept = default;
  TGraphic& operator=(TGraphic&&) noexcept = default;

  /// Assigns the content; implemented by each class. `source` is never this graphic.
  virtual void AssignFrom(const TGraphic& source) = 0;
  /// Drops all content.
  virtual void Clear() = 0;

  struct Transparency {
    bool isOn = false;
    TTransparentMode mode = tmAuto;
    TColor color = clWhite;
  };

  bool modified_ = false;
  Transparency transparency_;
};

}  // namespace rasterkit
