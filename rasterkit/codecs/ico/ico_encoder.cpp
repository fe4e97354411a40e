#include <string>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/codecs/ico/ico_encoder.h>
#include <rasterkit/codecs/ico/ico_format.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using namespace detail;

using ByteList = std::vector<uint8_t>;

void PutWord(ByteList& bytes, size_t offset, uint32_t value) {
  bytes[offset] = static_cast<uint8_t>(value);
  bytes[offset + 1] = static_cast<uint8_t>(value >> 8);
}

void PutLong(ByteList& bytes, size_t offset, uint32_t value) {
  PutWord(bytes, offset, value & 0xFFFF);
  PutWord(bytes, offset + 2, value >> 16);
}

void RequireIcon(const Raster& raster) {
  if (raster.Width() == 0 || raster.Height() == 0) {
    throw FormatError("ICO: there is no picture to save");
  }
  if (raster.Format() != pf32bit) throw FormatError("ICO: a picture needs 32 bits per pixel");
  if (raster.Width() > kLargestIcon || raster.Height() > kLargestIcon) {
    throw LimitError("ICO: a picture of " + std::to_string(raster.Width()) + " x " +
                     std::to_string(raster.Height()) +
                     " pixels is larger than 256 x 256, the limit of the format");
  }
}

/// Directory and info header.
ByteList MakeHead(const Raster& raster, uint32_t colorBytes, uint32_t maskBytes) {
  const size_t start = kIcoHeaderBytes + kIcoEntryBytes;
  const auto width = static_cast<uint32_t>(raster.Width());
  const auto height = static_cast<uint32_t>(raster.Height());
  ByteList head(start + kBmpInfoHeader);
  PutWord(head, ico_field::kType, kIcoType);
  PutWord(head, ico_field::kCount, 1);
  head[kIcoHeaderBytes + ico_field::kWidth] = static_cast<uint8_t>(width);
  head[kIcoHeaderBytes + ico_field::kHeight] = static_cast<uint8_t>(height);
  PutWord(head, kIcoHeaderBytes + ico_field::kPlanes, 1);
  PutWord(head, kIcoHeaderBytes + ico_field::kBits, 32);
  PutLong(head, kIcoHeaderBytes + ico_field::kBytes, kBmpInfoHeader + colorBytes + maskBytes);
  PutLong(head, kIcoHeaderBytes + ico_field::kOffset, static_cast<uint32_t>(start));
  PutLong(head, start + bmp_field::kSize, kBmpInfoHeader);
  PutLong(head, start + bmp_field::kWidth, width);
  PutLong(head, start + bmp_field::kHeight, 2 * height);
  PutWord(head, start + bmp_field::kPlanes, 1);
  PutWord(head, start + bmp_field::kBits, 32);
  PutLong(head, start + bmp_field::kImageBytes, colorBytes + maskBytes);
  return head;
}

void MarkTransparent(const uint8_t* pixels, int width, uint8_t* mask) {
  for (int x = 0; x < width; ++x) {
    if (pixels[4 * x + 3] == 0) mask[x / 8] = static_cast<uint8_t>(mask[x / 8] | 0x80 >> (x % 8));
  }
}

}  // namespace

void EncodeIco(const Raster& raster, TStream& stream) {
  RequireIcon(raster);
  const auto rows = static_cast<size_t>(raster.Height());
  const auto maskStride = static_cast<size_t>(StrideBytes(raster.Width(), 1));
  ByteList colors, mask(maskStride * rows);
  for (size_t i = 0; i < rows; ++i) {  // both from bottom to top
    const uint8_t* row = raster.Row(static_cast<int>(rows - 1 - i));
    colors.insert(colors.end(), row, row + raster.RowBytes());
    MarkTransparent(row, raster.Width(), mask.data() + i * maskStride);
  }
  stream.Write(
      MakeHead(raster, static_cast<uint32_t>(colors.size()), static_cast<uint32_t>(mask.size())));
  stream.Write(colors);
  stream.Write(mask);
}

}  // namespace rasterkit
