#include <utility>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/graphics/convert_graphic.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// The format in which a JPEG picture keeps these rows.
TPixelFormat FormatFor(const Raster& rows) {
  return rows.Format() == pf8bit && IsGrayRamp(rows.palette) ? pf8bit : pf24bit;
}

}  // namespace

TJPEGImage::TJPEGImage() = default;
TJPEGImage::~TJPEGImage() = default;

// Compressing keeps the size, so the picture need not be decoded for it. The lock is needed because
// another thread may be replacing the bitmap by the decoded one.
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

std::span<const uint8_t> TJPEGImage::CompressedData() const {
  if (!compressed_) return {};
  return *compressed_;
}

TBitmap TJPEGImage::TakeBitmap() {
  Bitmap();
  TBitmap taken = std::move(bitmap_);
  taken.AssignTransparency(*this);
  taken.SetModified(true);
  Clear();
  modified_ = true;
  return taken;
}

void TJPEGImage::AssignMoved(TBitmap&& bitmap) {
  if (bitmap.Content().Format() != FormatFor(bitmap.Content())) {
    Assign(&bitmap);
  } else {
    Clear();
    bitmap_ = TBitmap(std::move(bitmap.raster_));
    AssignTransparency(bitmap);
    modified_ = true;
  }
  bitmap = TBitmap();
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
  bitmap_ = detail::ConvertGraphic(source, FormatFor);
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
