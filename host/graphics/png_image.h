#pragma once

#include <rasterkit/host/graphics/bitmap.h>

namespace rasterkit {

/// A PNG picture. `Transparent` follows from its content: a tRNS chunk (its colour) or an alpha
/// channel (white); drawing blends the alpha channel.
class RASTERKIT_EXPORT TPngImage : public TGraphic {
 public:
  TPngImage();
  ~TPngImage() override;

  int Width() const override;
  int Height() const override;

  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) override;
  void DrawTo(TCanvas& canvas, int left, int top, int width, int height) const override;
  void AssignToBitmap(TBitmap& target) const override;

  /// The decoded picture: 1-, 4- or 8-bit, 24-bit, or 32-bit with an alpha channel.
  const TBitmap& Bitmap() const { return bitmap_; }

 protected:
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  TBitmap bitmap_;
};

}  // namespace rasterkit
