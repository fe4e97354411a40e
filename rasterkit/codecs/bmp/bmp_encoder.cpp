#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/bmp/bmp_file_encoder.h>
#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/codecs/rows/alpha_rows.h>
#include <rasterkit/codecs/rows/palette_entries_of_file.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace detail {
namespace {

/// Bytes per write; a buffer of this size reverses the order of rows.
constexpr size_t kBatchBytes = 512 * 1024;

/// The rendering intent of photographs.
constexpr uint32_t kIntentImages = 4;

/// Pixels per meter as the header holds them; 0 for unknown.
uint32_t PixelsPerMeter(double perInch) {
  const double value = perInch / kMetersPerInch;
  if (!(value > 0)) return 0;
  return static_cast<uint32_t>(
      std::lround(std::min(value, double{std::numeric_limits<int32_t>::max()})));
}

}  // namespace

BmpEncoder::BmpEncoder(const Raster& like, int width, int height, const BmpProperties& properties)
    : raster_(like),
      width_(width),
      height_(height),
      stride_(static_cast<size_t>(StrideBytes(width, StoredBitsPerPixel(like.Format())))),
      resolution_(properties.resolution) {
  if (properties.profile && !properties.profile->empty()) profile_ = properties.profile;
  headerBytes_ = HeaderBytes();
  if (IsIndexed(like.Format())) {
    paletteEntries_ = static_cast<uint32_t>(PaletteEntriesOfFile(like));
  }
  const size_t headBytes =
      kBmpFileHeaderBytes + headerBytes_ + MaskBytesBehindHeader() + 4 * size_t{paletteEntries_};
  pixelBytes_ = uint64_t{stride_} * static_cast<uint64_t>(height_);
  fileBytes_ = headBytes + pixelBytes_ + (HasProfile() ? profile_->size() : 0);
  head_.resize(headBytes);
}

void BmpEncoder::RequireWritable() const {
  if (width_ == 0 || height_ == 0) {
    throw FormatError("BMP: a picture without pixels cannot be written");
  }
  if (fileBytes_ > std::numeric_limits<uint32_t>::max()) {
    throw LimitError("BMP: a file of " + std::to_string(fileBytes_) +
                     " bytes is larger than the format allows");
  }
}

BmpMasks BmpEncoder::Masks() const {
  if (raster_.Format() == pf16bit) return kBmpMasks565;
  if (!HasAlpha()) return {};
  BmpMasks masks = kBmpMasks888;
  masks.alpha = kBmpAlpha8888;
  return masks;
}

uint32_t BmpEncoder::HeaderBytes() const {
  if (HasProfile()) return kBmpV5Header;
  return HasAlpha() ? kBmpV4Header : kBmpInfoHeader;
}

uint32_t BmpEncoder::MaskBytesBehindHeader() const {
  return headerBytes_ == kBmpInfoHeader && Masks() != BmpMasks{} ? 12 : 0;
}

void BmpEncoder::PutWord(size_t offset, uint32_t value) {
  head_[offset] = static_cast<uint8_t>(value);
  head_[offset + 1] = static_cast<uint8_t>(value >> 8);
}

void BmpEncoder::PutLong(size_t offset, uint32_t value) {
  PutWord(offset, value & 0xFFFF);
  PutWord(offset + 2, value >> 16);
}

void BmpEncoder::FillFileHeader() {
  head_[0] = 'B';
  head_[1] = 'M';
  PutLong(2, static_cast<uint32_t>(fileBytes_));
  PutLong(10, static_cast<uint32_t>(head_.size()));
}

void BmpEncoder::FillInfoHeader() {
  const auto put = [this](uint32_t field, uint32_t value) {
    PutLong(kBmpFileHeaderBytes + field, value);
  };
  const BmpCompression compression =
      Masks() == BmpMasks{} ? BmpCompression::none : BmpCompression::bitFields;
  put(bmp_field::kSize, headerBytes_);
  put(bmp_field::kWidth, static_cast<uint32_t>(width_));
  put(bmp_field::kHeight, static_cast<uint32_t>(height_));
  PutWord(kBmpFileHeaderBytes + bmp_field::kPlanes, 1);
  PutWord(kBmpFileHeaderBytes + bmp_field::kBits,
          static_cast<uint32_t>(StoredBitsPerPixel(raster_.Format())));
  put(bmp_field::kCompression, static_cast<uint32_t>(compression));
  put(bmp_field::kImageBytes, static_cast<uint32_t>(pixelBytes_));
  put(bmp_field::kPixelsPerMeterX, PixelsPerMeter(resolution_.x));
  put(bmp_field::kPixelsPerMeterY, PixelsPerMeter(resolution_.y));
  put(bmp_field::kColorsUsed, paletteEntries_);
}

void BmpEncoder::FillMasks() {
  const BmpMasks masks = Masks();
  if (masks == BmpMasks{}) return;
  const size_t place = kBmpFileHeaderBytes + bmp_field::kMasks;
  PutLong(place, masks.red);
  PutLong(place + 4, masks.green);
  PutLong(place + 8, masks.blue);
  if (headerBytes_ >= kBmpV4Header) PutLong(place + 12, masks.alpha);
}

void BmpEncoder::FillColorSpace() {
  if (headerBytes_ < kBmpV4Header) return;
  PutLong(kBmpFileHeaderBytes + bmp_field::kColorSpace,
          HasProfile() ? kBmpProfileEmbedded : kBmpSrgb);
  if (!HasProfile()) return;
  PutLong(kBmpFileHeaderBytes + bmp_field::kIntent, kIntentImages);
  // The offset of the profile counts from the info header, unlike all others.
  PutLong(kBmpFileHeaderBytes + bmp_field::kProfileOffset,
          static_cast<uint32_t>(head_.size() + pixelBytes_ - kBmpFileHeaderBytes));
  PutLong(kBmpFileHeaderBytes + bmp_field::kProfileBytes, static_cast<uint32_t>(profile_->size()));
}

void BmpEncoder::FillPalette() {
  const int count = static_cast<int>(paletteEntries_);
  size_t place = head_.size() - 4 * static_cast<size_t>(count);
  for (int i = 0; i < count; ++i, place += 4) {
    const tagPALETTEENTRY entry = raster_.palette.Entry(i);
    head_[place] = entry.peBlue;
    head_[place + 1] = entry.peGreen;
    head_[place + 2] = entry.peRed;
  }
}

size_t BmpEncoder::RowBytes() const {
  constexpr size_t kByte = 8;
  return (static_cast<size_t>(width_) * StoredBitsPerPixel(raster_.Format()) + kByte - 1) / kByte;
}

void BmpEncoder::CopyRow(const uint8_t* row, uint8_t* target) const {
  const size_t rowBytes = RowBytes();
  std::memcpy(target, row, rowBytes);
  std::memset(target + rowBytes, 0, stride_ - rowBytes);
  if (raster_.Format() != pf32bit || HasAlpha()) return;
  // Some programs take the unused byte for alpha; they must see an opaque picture.
  MakeOpaque(target, static_cast<size_t>(width_));
}

void BmpEncoder::WriteRows(const Raster& rows, TStream& stream) {
  const int count = rows.Height();
  if (rows.Width() != width_ || count > height_ - written_) {
    throw RangeError("BMP: the rows do not fit the picture");
  }
  if (count == 0) return;
  const size_t batchRows = std::clamp<size_t>(kBatchBytes / stride_, 1, static_cast<size_t>(count));
  written_ += count;
  const uint64_t place =
      start_ + head_.size() + static_cast<uint64_t>(height_ - written_) * stride_;
  if (stream.Position() != place) stream.SetPosition(place);
  std::vector<uint8_t> batch(batchRows * stride_);
  size_t filled = 0;
  for (int y = count - 1; y >= 0; --y) {
    CopyRow(rows.Row(y), batch.data() + filled);
    filled += stride_;
    if (filled < batch.size() && y > 0) continue;
    RequireTime();
    stream.Write({batch.data(), filled});
    filled = 0;
  }
}

void BmpEncoder::FillHead() {
  FillFileHeader();
  FillInfoHeader();
  FillMasks();
  FillColorSpace();
  FillPalette();
}

void BmpEncoder::Begin(TStream& stream) {
  RequireWritable();
  FillHead();
  start_ = stream.Position();
  stream.Write(head_);
}

void BmpEncoder::End(TStream& stream) {
  if (written_ != height_) throw RangeError("BMP: rows of the picture are missing");
  const uint64_t end = start_ + head_.size() + pixelBytes_;
  if (stream.Position() != end) stream.SetPosition(end);
  if (HasProfile()) stream.Write(*profile_);
}

}  // namespace detail

namespace {

using namespace detail;

BmpProperties PropertiesOf(const Raster& raster, BmpProfile profile) {
  return {raster.resolution, profile == BmpProfile::embed ? raster.profile.get() : nullptr};
}

void WriteTo(const Raster& raster, const BmpProperties& properties, TStream& stream) {
  BmpEncoder encoder(raster, raster.Width(), raster.Height(), properties);
  encoder.Begin(stream);
  encoder.WriteRows(raster, stream);
  encoder.End(stream);
}

}  // namespace

void detail::EncodeBmpWith(const Raster& raster, const BmpProperties& properties, TStream& stream) {
  WriteTo(raster, properties, stream);
}

void EncodeBmp(const Raster& raster, TStream& stream, BmpProfile profile) {
  const LimitsScope limits;
  WriteTo(raster, PropertiesOf(raster, profile), stream);
}

std::vector<uint8_t> detail::BmpHead(const Raster& raster, BmpProfile profile) {
  const BmpProperties properties = PropertiesOf(raster, profile);
  BmpEncoder encoder(raster, raster.Width(), raster.Height(), properties);
  encoder.FillHead();
  return encoder.Head();
}

}  // namespace rasterkit
