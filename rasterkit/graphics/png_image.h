#pragma once

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// A PNG picture. A loaded one is `Transparent` if it has a tRNS chunk (with its color) or an alpha
/// channel (with white). Drawing blends the alpha channel.
class RASTERKIT_EXPORT TPngImage : public TGraphic {
 public:
  TPngImage();
  ~TPngImage() override;

  int Width() const override;
  int Height() const override;
  const Raster* Rows() const override { return &Bitmap().Content(); }

  void LoadFromStream(TStream& stream) override;
  /// Writes a PNG file; a transparent picture without an alpha channel gets its color as tRNS.
  /// Throws FormatError for an empty picture.
  void SaveToStream(TStream& stream) override;
  void AssignToBitmap(TBitmap& target) const override;

  /// The decoded picture: 1-, 4- or 8-bit, 24-bit, or 32-bit with an alpha channel. Its
  /// transparency has no meaning; use that of this graphic.
  const TBitmap& Bitmap() const { return bitmap_; }

 protected:
  /// Keeps the format of indexed pictures, and of 32-bit ones if their alpha is defined; everything
  /// else becomes 24-bit.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  TBitmap bitmap_;
};

}  // namespace rasterkit
