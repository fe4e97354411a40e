#include "tool/pictures/memory_need.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <span>
#include <vector>

#include <rasterkit/codecs/jp2/jp2_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::tool {
namespace {

using Bytes = std::span<const uint8_t>;

/// Enough for the headers of a JPEG file with a preview and a color profile.
constexpr uint64_t kHeadBytes = 1 << 20;
constexpr uint64_t kBytesPerPixel = 4, kCopies = 2;
/// Bands of a picture, and pictures that are kept in memory on the way.
constexpr uint64_t kMostFlowing = uint64_t{96} << 20;

struct Size {
  uint64_t width = 0, height = 0;
};

uint32_t LittleEndian(Bytes bytes, size_t at, int count) {
  uint32_t value = 0;
  for (int i = count - 1; i >= 0; --i) value = value << 8 | bytes[at + static_cast<size_t>(i)];
  return value;
}

uint32_t BigEndian32(Bytes bytes, size_t at) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i) value = value << 8 | bytes[at + i];
  return value;
}

Size PngSize(Bytes head) {
  constexpr size_t kWidth = 16, kHeight = 20, kEnd = 24;
  if (head.size() < kEnd) return {};
  return {BigEndian32(head, kWidth), BigEndian32(head, kHeight)};
}

Size GifSize(Bytes head) {
  constexpr size_t kWidth = 6, kHeight = 8, kEnd = 10;
  if (head.size() < kEnd) return {};
  return {LittleEndian(head, kWidth, 2), LittleEndian(head, kHeight, 2)};
}

Size BmpSize(Bytes head) {
  constexpr size_t kHeaderBytes = 14, kWidth = 18, kHeight = 22, kEnd = 26;
  constexpr uint32_t kCoreHeader = 12;
  if (head.size() < kEnd) return {};
  if (LittleEndian(head, kHeaderBytes, 4) == kCoreHeader) {
    return {LittleEndian(head, kWidth, 2), LittleEndian(head, kWidth + 2, 2)};
  }
  const auto height = static_cast<int32_t>(LittleEndian(head, kHeight, 4));
  return {LittleEndian(head, kWidth, 4), static_cast<uint64_t>(std::llabs(int64_t{height}))};
}

Size TiffSize(TStream& stream) {
  const TiffFacts facts = ReadTiffFacts(stream);
  return {facts.width, facts.height};
}

Size Jp2Size(TStream& stream) {
  const PictureHeader header = ReadJp2Header(stream);
  return {static_cast<uint64_t>(header.width), static_cast<uint64_t>(header.height)};
}

Size SizeOf(TStream& stream) {
  const PictureType type = SniffPictureType(stream);
  if (type == PictureType::tiff) return TiffSize(stream);
  if (type == PictureType::jp2) return Jp2Size(stream);
  std::vector<uint8_t> head(std::min(stream.Size(), kHeadBytes));
  head.resize(stream.Read(head));
  switch (type) {
    case PictureType::bmp:
      return BmpSize(head);
    case PictureType::gif:
      return GifSize(head);
    case PictureType::png:
      return PngSize(head);
    case PictureType::jpeg: {
      const JpegFrame frame = ReadJpegFrame(head);
      return {static_cast<uint64_t>(frame.width), static_cast<uint64_t>(frame.height)};
    }
    default:
      return {};
  }
}

/// True if the rows of the file are read one after another.
bool FlowsBy(TStream& stream) {
  stream.SetPosition(0);
  const PictureType type = SniffPictureType(stream);
  stream.SetPosition(0);
  return OpenRows(stream, type) != nullptr;
}

}  // namespace

uint64_t MemoryNeed(const std::string& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(ToPath(file), error)) return 0;
  try {
    TFileStream stream(file);
    const Size size = SizeOf(stream);
    // Neither side of a real picture has more bits; products stay within 64 bits.
    constexpr uint64_t kMostPixels = uint64_t{1} << 58;
    const uint64_t pixels = std::min(size.width * size.height, kMostPixels);
    const uint64_t whole = pixels * kBytesPerPixel * kCopies;
    return whole > kMostFlowing && FlowsBy(stream) ? kMostFlowing : whole;
  } catch (const Error&) {
    return 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

}  // namespace rasterkit::tool
