#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What `TBitmap::CarryFrom` does with transparency.
enum class CarriedTransparency {
  /// Keeps that of the target.
  none,
  /// Takes over flag, mode and color; an automatic color follows the new bottom-left pixel.
  same,
  /// As `same`, but the color that is transparent now becomes a fixed one: for pixels that change
  /// their places.
  fixed,
};

/// What `TBitmap::CarryFrom` takes over; the rest stays as it is in the target. Everything is
/// carried unless the call says otherwise.
struct Carry {
  /// Width and height are exchanged, and so are the resolutions of x and y.
  bool exchangedAxes = false;
  bool resolution = true;
  bool profile = true;
  /// Applies between bitmaps of one indexed pixel format only. False, like `alphaFormat`, if the
  /// rows are new: both describe the rows of the source.
  bool palette = true;
  bool alphaFormat = true;
  CarriedTransparency transparency = CarriedTransparency::same;
};

/// Raster image: rows of pixels with their format, a palette for indexed formats, and transparency.
///
/// A new bitmap is 0 x 0 and pfDevice (stored as 32-bit). New area is filled with the canvas brush:
/// white by default, alpha 255, 1-bit ones. Rows run from top to bottom and are padded to 4 bytes;
/// the padding is zero. An operation that fails leaves the bitmap as it was. A bitmap that was
/// moved from is empty. Pen, brush and stretch mode of the canvas are moved with the bitmap, and
/// stay when content is assigned. Any number of threads may read one bitmap, and write different
/// rows of it through pointers from `ScanLine`; everything else needs one thread at a time.
class RASTERKIT_EXPORT TBitmap : public TGraphic {
 public:
  TBitmap();
  ~TBitmap() override;
  TBitmap(TBitmap&&) noexcept;
  TBitmap& operator=(TBitmap&&) noexcept;
  /// Takes over the raster's rows, palette, resolution, profile, alpha mark and transparent color.
  explicit TBitmap(Raster raster);

  /// Complete copy, the canvas's pen, brush and stretch mode included.
  std::unique_ptr<TBitmap> Clone() const;

  int Width() const override;
  int Height() const override;
  void SetWidth(int width) { SetSize(width, Height()); }
  void SetHeight(int height) { SetSize(Width(), height); }
  /// Resizes the pixel area: keeps the common part at the top left and fills new area with the
  /// canvas brush. Throws RangeError for a negative size and LimitError beyond the memory budget.
  void SetSize(int width, int height);

  TPixelFormat PixelFormat() const;
  /// Converts the pixels (see ConvertRaster for the rules). pfDevice stores 32-bit; pfCustom keeps
  /// the rows as they are.
  void SetPixelFormat(TPixelFormat format);
  /// Sets format and size; the pixels are undefined afterwards. Cheaper than SetPixelFormat and
  /// SetSize if every pixel will be written anyway. An indexed bitmap gets the default palette
  /// unless its format stays. Transparency, resolution and profile stay.
  void ResetPixels(TPixelFormat format, int width, int height);
  /// Bits per pixel in memory: 1, 4, 8, 16, 24 or 32.
  int StoredBits() const;

  /// Row y from the top. Throws RangeError if there is no such row.
  uint8_t* ScanLine(int y);
  const uint8_t* ScanLine(int y) const;
  /// Bytes from one row to the next.
  size_t Stride() const;

  HPALETTE Palette() const;
  /// Replaces the palette; indexes stay. A true-color bitmap ignores it and has the empty handle.
  void SetPalette(HPALETTE palette);

  TAlphaFormat AlphaFormat() const;
  void SetAlphaFormat(TAlphaFormat format);

  Resolution Dpi() const;
  void SetDpi(Resolution resolution);
  ColorProfile Profile() const;
  void SetProfile(ColorProfile profile);

  /// Takes over the properties of the bitmap that this one was made from: resolution, ICC profile,
  /// palette, alpha mark and transparency. Size, pixel format, pixels and canvas stay.
  void CarryFrom(const TBitmap& source, const Carry& carry = {});

  /// Color of a pixel, through the palette if there is one; clBlack outside the bitmap.
  TColor PixelColor(int x, int y) const;

  /// Drawing surface, created on first use and owned by the bitmap.
  TCanvas& Canvas();

  /// Rows and their properties, for codecs and kernels. `transparentColor` is empty: the bitmap
  /// itself keeps its transparency.
  const Raster& Content() const;
  /// Moves the rows and their properties out, without a copy; the transparent color is among them
  /// if the bitmap is `Transparent`. The bitmap is empty afterwards, 0 x 0.
  Raster TakeContent();

  /// Reads a Windows bitmap file, also one of 0 x 0 pixels (see GetWindowsBitmap).
  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) override;
  /// Writes a Windows bitmap file, with the ICC profile, atomically.
  void SaveToFile(const std::string& fileName) override;

  const Raster* Rows() const override { return &raster_; }
  void AssignToBitmap(TBitmap& target) const override;

 protected:
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  friend class TCanvas;
  friend class TJPEGImage;
  friend class TPngImage;

  void FillNewArea(Raster& raster, int oldWidth, int oldHeight) const;
  void TakeCanvas(TBitmap& other) noexcept;
  void CarryTransparency(const TBitmap& source, CarriedTransparency transparency);

  Raster raster_;
  std::unique_ptr<TCanvas> canvas_;
  TPixelFormat format_ = pfDevice;
};

}  // namespace rasterkit
