// The thumbnail in an EXIF section.

#include <algorithm>
#include <span>
#include <string_view>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/jpegexif/image_data.h>

namespace rasterkit {
namespace {

constexpr std::string_view kStartAndQuantization("\xFF\xD8\xFF\xDB");
constexpr std::string_view kStartAndHuffman("\xFF\xD8\xFF\xC4");
constexpr std::string_view kEndOfImage("\xFF\xD9");

/// Bytes that contain the thumbnail, as far as the section holds them.
std::string_view ThumbnailArea(std::string_view section, const TExifData& exif) {
  const auto start = static_cast<size_t>(exif.ThumbStart) - 1;
  if (start >= section.size()) return {};
  return section.substr(start, static_cast<size_t>(exif.ThumbLength));
}

}  // namespace

std::string TImageData::ExtractThumbnailBuffer() const {
  if (!ExifData || !ExifData->HasThumbnail()) return {};
  const std::string_view area = ThumbnailArea(ExifBuff, *ExifData);
  size_t start = area.find(kStartAndQuantization);
  if (start == std::string_view::npos) start = area.find(kStartAndHuffman);
  if (start == std::string_view::npos) return {};
  std::string_view picture = area.substr(start);
  // One byte after the end marker is included, which decoders ignore.
  constexpr size_t kBytesFromEnd = kEndOfImage.size() + 1;
  const size_t end = picture.find(kEndOfImage);
  if (end != std::string_view::npos) picture = picture.substr(0, end + kBytesFromEnd);
  return std::string(picture);
}

std::unique_ptr<TJPEGImage> TImageData::ExtractThumbnailJPeg() const {
  constexpr int32_t kJpegCompression = 6;
  if (!ExifData || !ExifData->HasThumbnail() || ExifData->ThumbType != kJpegCompression) {
    return nullptr;
  }
  const std::string buffer = ExtractThumbnailBuffer();
  if (buffer.empty()) return nullptr;
  TSpanStream stream({reinterpret_cast<const uint8_t*>(buffer.data()), buffer.size()});
  auto image = std::make_unique<TJPEGImage>();
  image->LoadFromStream(stream);
  return image;
}

void TImageData::RemoveThumbnail() {
  if (ExifSegment == nullptr || !ExifData || !ExifData->HasThumbnail()) return;
  // The cut is 14 bytes before the thumbnail's directory.
  const int32_t length = ExifData->ThumbStart - 6;
  std::string& data = ExifSegment->Data;
  if (static_cast<size_t>(length) >= data.size()) return;
  data.resize(static_cast<size_t>(length));
  ExifSegment->Size = length;
  data[0] = static_cast<char>(length / 256);
  data[1] = static_cast<char>(length % 256);
}

}  // namespace rasterkit
