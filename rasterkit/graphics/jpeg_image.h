#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// A JPEG picture. Loading decodes at once, so a broken file fails there. The compressed bytes are
/// kept, and saved unchanged until the picture changes.
///
/// An assigned picture is encoded by `Compress` or the first save. After `Compress` the graphic
/// shows the compressed picture with its losses, which is decoded on first use. Saving never
/// changes what is shown.
class RASTERKIT_EXPORT TJPEGImage : public TGraphic {
 public:
  TJPEGImage();
  ~TJPEGImage() override;

  int Width() const override;
  int Height() const override;
  const Raster* Rows() const override { return &Bitmap().Content(); }

  /// Quality for encoding, 90 by default; any byte is accepted and clamped to 1 to 100. A change
  /// takes effect at the next encoding: kept bytes stay until `Compress` or another picture.
  int CompressionQuality() const { return quality_; }
  void SetCompressionQuality(uint8_t quality) { quality_ = quality; }
  /// Encodes the picture now, at the current quality, and replaces the kept bytes. No-op for an
  /// empty picture.
  void Compress();

  /// Tells whether the picture is gray (8-bit with a gray ramp).
  bool Grayscale() const;

  void LoadFromStream(TStream& stream) override;
  /// Throws FormatError for an empty picture.
  void SaveToStream(TStream& stream) override;
  void AssignToBitmap(TBitmap& target) const override;

  /// The decoded picture: 8-bit gray or 24-bit. Its transparency has no meaning; use that of this
  /// graphic.
  const TBitmap& Bitmap() const;
  /// Compressed data: the loaded file, or the result of the last encoding; empty before the first
  /// encoding. Valid until the picture changes.
  std::span<const uint8_t> CompressedData() const;

  /// Moves the picture out, with the transparency of this graphic, which is empty afterwards. Gives
  /// what assigning it to a new bitmap gives, without a copy of the rows.
  TBitmap TakeBitmap();
  /// Assigns a bitmap without a copy of its rows if their format fits; `bitmap` is empty
  /// afterwards.
  void AssignMoved(TBitmap&& bitmap);

 protected:
  /// Takes over bytes and quality of another JPEG picture. An 8-bit picture with a gray ramp stays
  /// gray; everything else becomes 24-bit.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  using Bytes = std::shared_ptr<const std::vector<uint8_t>>;

  Bytes Encode() const;

  // Any number of threads may read one picture; the first of them decodes it.
  mutable std::mutex decoding_;
  mutable std::atomic<bool> decodeLater_ = false;
  mutable TBitmap bitmap_;
  Bytes compressed_;
  int quality_ = 90;
};

}  // namespace rasterkit
