#include <utility>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/graphics/convert_graphic.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {

TJPEGImage::TJPEGImage() = default;
TJPEGImage::~TJPEGImage() = default;

// Compressing keeps the size, so a picture that is decoded later need not be decoded for it; but
// the decoding of another thread may be about to replace the bitmap.
int TJPEGImage::Width() const {
  const std::lock_guard lock(decoding_);
  return bitmap_.Width();
}
int TJPEGImage::Height() const {
  const std::lock_guard lock(decoding_);
  return bitmap_.Height();
}

bool TJPEGImage::Grayscale() const {
  return Bitmap().PixelFormat() == pf8bit && IsGrayRamp(Bitmap().Palette());
}

const TBitmap& TJPEGImage::Bitmap() const {
  if (!decodeLater_) return bitmap_;
  const std::lock_guard lock(decoding_);
  if (decodeLater_) {
    bitmap_ = TBitmap(DecodeJpeg(*compressed_));
    decodeLater_ = false;
  }
  return bitmap_;
}

TJPEGImage::Bytes TJPEGImage::Encode() const {
  if (Empty()) throw FormatError("JPEG: there is no picture to save");
  return std::make_shared<const std::vector<uint8_t>>(EncodeJpeg(Bitmap().Content(), quality_));
}

void TJPEGImage::Compress() {
  if (Empty()) return;
  compressed_ = Encode();
  decodeLater_ = true;
  modified_ = true;
}

void TJPEGImage::LoadFromStream(TStream& stream) {
  auto bytes = std::make_shared<const std::vector<uint8_t>>(stream.ReadToEnd());
  bitmap_ = TBitmap(DecodeJpeg(*bytes));
  compressed_ = std::move(bytes);
  decodeLater_ = false;
  modified_ = false;
}

void TJPEGImage::SaveToStream(TStream& stream) {
  if (!compressed_) compressed_ = Encode();
  stream.Write(*compressed_);
}

void TJPEGImage::AssignToBitmap(TBitmap& target) const {
  Bitmap().AssignToBitmap(target);
  target.AssignTransparency(*this);
}

void TJPEGImage::AssignFrom(const TGraphic& source) {
  bitmap_ = detail::ConvertGraphic(source, [](const Raster& rows) {
    return rows.Format() == pf8bit && IsGrayRamp(rows.palette) ? pf8bit : pf24bit;
  });
  decodeLater_ = false;
  const auto* jpeg = dynamic_cast<const TJPEGImage*>(&source);
  compressed_ = jpeg != nullptr ? jpeg->compressed_ : nullptr;
  if (jpeg != nullptr) quality_ = jpeg->quality_;
}

void TJPEGImage::Clear() {
  bitmap_ = TBitmap();
  decodeLater_ = false;
  compressed_ = nullptr;
}

}  // namespace rasterkit
