#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/host/graphics/bitmap.h>

namespace rasterkit {

/// A JPEG picture. Loading decodes at once, so that a broken file fails there; the compressed bytes
/// are kept and saved unchanged as long as the picture was not changed.
class RASTERKIT_EXPORT TJPEGImage : public TGraphic {
 public:
  TJPEGImage();
  ~TJPEGImage() override;

  int Width() const override;
  int Height() const override;

  /// 1 to 100, 90 at first; any byte is accepted and clamped when encoding. A change takes effect
  /// at the next encoding.
  int CompressionQuality() const { return quality_; }
  void SetCompressionQuality(uint8_t quality) { quality_ = quality; }
  /// Encodes the picture now with the quality set, dropping the kept bytes.
  void Compress();

  /// True when the picture is grey (8-bit with a grey ramp).
  bool Grayscale() const;

  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) override;
  void AssignToBitmap(TBitmap& target) const override;

  /// The decoded picture: 8-bit grey or 24-bit.
  const TBitmap& Bitmap() const { return bitmap_; }

 protected:
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  TBitmap bitmap_;
  std::shared_ptr<const std::vector<uint8_t>> compressed_;
  int quality_ = 90;
};

}  // namespace rasterkit
