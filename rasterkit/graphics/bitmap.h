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

/// The raster that everything works on: rows of pixels, their format, a palette for the indexed
/// formats, transparency.
///
/// A new bitmap is 0 x 0 and pfDevice (stored as 32-bit). New area is white: the canvas brush,
/// alpha 255, 1-bit ones. Rows run from top to bottom, are padded to 4 bytes, and their padding is
/// zero. What fails leaves the bitmap as it was. A bitmap moved from is empty. The canvas's pen,
/// brush and stretch mode move along, and stay when content is assigned. Any number of threads may
/// read one bitmap, and write different rows of it through pointers from `ScanLine`; everything
/// else needs one thread at a time.
class RASTERKIT_EXPORT TBitmap : public TGraphic {
 public:
  TBitmap();
  ~TBitmap() override;
  TBitmap(TBitmap&&) noexcept;
  TBitmap& operator=(TBitmap&&) noexcept;
  /// A bitmap with the raster's rows, palette, resolution, profile, alpha mark and transparent
  /// color.
  explicit TBitmap(Raster raster);

  /// A whole copy, spelled out because it is expensive.
  std::unique_ptr<TBitmap> Clone() const;

  int Width() const override;
  int Height() const override;
  void SetWidth(int width) { SetSize(width, Height()); }
  void SetHeight(int height) { SetSize(Width(), height); }
  /// Keeps the common part at the top left; new area is filled with the canvas brush. Throws
  /// RangeError for a negative size and LimitError beyond the memory budget.
  void SetSize(int width, int height);

  TPixelFormat PixelFormat() const;
  /// Converts (see ConvertRaster for the rules). pfDevice stores 32-bit; pfCustom keeps the rows as
  /// they are.
  void SetPixelFormat(TPixelFormat format);
  /// Gives the bitmap format and size with undefined pixels and the format's default palette (an
  /// indexed bitmap of the same format keeps its own): the cheap way when every pixel will be
  /// written anyway. Transparency, resolution and profile stay.
  void ResetPixels(TPixelFormat format, int width, int height);
  /// Bits a pixel takes in memory: 1, 4, 8, 16, 24 or 32.
  int StoredBits() const;

  /// Row y from the top, writable. Throws RangeError when there is no such row.
  uint8_t* ScanLine(int y);
  const uint8_t* ScanLine(int y) const;
  /// Bytes from one row to the next.
  size_t Stride() const;

  HPALETTE Palette() const;
  /// Replaces the palette; indexes stay. Ignored palettes of true-color bitmaps are dropped (the
  /// empty handle).
  void SetPalette(HPALETTE palette);

  TAlphaFormat AlphaFormat() const;
  void SetAlphaFormat(TAlphaFormat format);

  Resolution Dpi() const;
  void SetDpi(Resolution resolution);
  ColorProfile Profile() const;
  void SetProfile(ColorProfile profile);

  /// Color of a pixel through the palette where there is one; clBlack outside the bitmap.
  TColor PixelColor(int x, int y) const;

  /// The drawing surface; made on first use and owned by the bitmap.
  TCanvas& Canvas();

  /// The rows and what belongs to them, for codecs and kernels. Its `transparentColor` is empty:
  /// the bitmap itself keeps what a file marked as transparent.
  const Raster& Content() const;

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
  friend class TPngImage;

  void FillNewArea(Raster& raster, int oldWidth, int oldHeight) const;
  void TakeCanvas(TBitmap& other) noexcept;

  Raster raster_;
  TPixelFormat format_ = pfDevice;
  std::unique_ptr<TCanvas> canvas_;
};

}  // namespace rasterkit
