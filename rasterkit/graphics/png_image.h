#pragma once

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// A PNG picture. What it loads says whether it is `Transparent`: by a tRNS chunk (its color) or
/// by an alpha channel (white). Drawing blends the alpha channel.
class RASTERKIT_EXPORT TPngImage : public TGraphic {
 public:
  TPngImage();
  ~TPngImage() override;

  int Width() const override;
  int Height() const override;
  const Raster* Rows() const override { return &Bitmap().Content(); }

  void LoadFromStream(TStream& stream) override;
  /// A transparent picture without an alpha channel gets its color as tRNS. Throws FormatError for
  /// an empty picture.
  void SaveToStream(TStream& stream) override;
  void AssignToBitmap(TBitmap& target) const override;

  /// The decoded picture: 1-, 4- or 8-bit, 24-bit, or 32-bit with an alpha channel. Transparency is
  /// this graphic's matter: ask here, not there.
  const TBitmap& Bitmap() const { return bitmap_; }

 protected:
  /// Indexed pictures stay; a 32-bit one stays when its alpha is defined; all else becomes 24-bit.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  TBitmap bitmap_;
};

}  // namespace rasterkit
