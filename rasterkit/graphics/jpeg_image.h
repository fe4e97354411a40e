#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// A JPEG picture. Loading decodes at once, so that a broken file fails there; the compressed bytes
/// are kept and saved unchanged as long as the picture was not changed.
///
/// A picture that was assigned is encoded at `Compress` or at the first save. `Compress` makes the
/// graphic what its bytes hold: from then on it shows the compressed picture with its losses,
/// decoded when somebody first looks. A save never changes what is shown.
class RASTERKIT_EXPORT TJPEGImage : public TGraphic {
 public:
  TJPEGImage();
  ~TJPEGImage() override;

  int Width() const override;
  int Height() const override;
  const Raster* Rows() const override { return &Bitmap().Content(); }

  /// Any byte, 90 at first; clamped to 1 to 100 when encoding. A change takes effect at the next
  /// encoding: kept bytes stay until `Compress` or another picture.
  int CompressionQuality() const { return quality_; }
  void SetCompressionQuality(uint8_t quality) { quality_ = quality; }
  /// Encodes the picture now with the quality set, in place of the kept bytes. Nothing happens to
  /// an empty picture.
  void Compress();

  /// True when the picture is gray (8-bit with a gray ramp).
  bool Grayscale() const;

  void LoadFromStream(TStream& stream) override;
  /// Throws FormatError for an empty picture.
  void SaveToStream(TStream& stream) override;
  void AssignToBitmap(TBitmap& target) const override;

  /// The decoded picture: 8-bit gray or 24-bit. Transparency is this graphic's matter: ask here,
  /// not there.
  const TBitmap& Bitmap() const;

 protected:
  /// A JPEG picture's bytes and quality come along; an 8-bit picture with a gray ramp stays gray,
  /// everything else becomes 24-bit.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  using Bytes = std::shared_ptr<const std::vector<uint8_t>>;

  Bytes Encode() const;

  // Any number of threads may look at one picture, and the first of them decodes.
  mutable std::mutex decoding_;
  mutable std::atomic<bool> decodeLater_ = false;
  mutable TBitmap bitmap_;
  Bytes compressed_;
  int quality_ = 90;
};

}  // namespace rasterkit
