// Writes the metadata of a photo in front of new picture data.

#include <array>
#include <span>
#include <string_view>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/jpegexif/exif_writer.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>

namespace rasterkit {
namespace {

constexpr uint64_t kMarkerBytes = 2;

/// For pictures without EXIF data and without a header of their own: JFIF 1.2, 300 dots per inch,
/// no thumbnail.
constexpr std::string_view kDefaultHeader(
    "\xFF\xE0\x00\x10JFIF\x00\x01\x02\x01\x01\x2C\x01\x2C\x00\x00", 18);

int32_t WriteBytes(TStream& target, std::string_view bytes) {
  target.Write({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
  return static_cast<int32_t>(bytes.size());
}

int32_t WriteSection(TStream& target, const TSection& section) {
  const std::array<char, kMarkerBytes> marker = {'\xFF', static_cast<char>(section.DType)};
  return WriteBytes(target, {marker.data(), marker.size()}) + WriteBytes(target, section.Data);
}

struct SectionHead {
  int32_t marker = 0;
  uint64_t length = 0;
};

/// Reads marker and length of a section; bytes after the end of the file count as 0.
SectionHead ReadHead(TStream& jpeg, uint64_t position) {
  std::array<uint8_t, 4> bytes = {};
  jpeg.SetPosition(position);
  size_t filled = 0;
  while (filled < bytes.size()) {
    const size_t arrived = jpeg.Read(std::span(bytes).subspan(filled));
    if (arrived == 0) break;
    filled += arrived;
  }
  return {bytes[1], static_cast<uint64_t>(bytes[2]) * 256 + bytes[3]};
}

bool IsMetadata(int32_t marker) {
  switch (marker) {
    case kMarkerApp1:
    case kMarkerApp2:
    case kMarkerApp12:
    case kMarkerApp13:
    case kMarkerApp14:
    case kMarkerCom:
      return true;
    default:
      return false;
  }
}

void CopyRest(TStream& source, TStream& target) {
  std::array<uint8_t, 64 * 1024> buffer;
  while (const size_t count = source.Read(buffer)) target.Write(std::span(buffer).first(count));
}

}  // namespace

uint64_t detail::SkipEncoderMetadata(TStream& jpeg) {
  uint64_t position = kMarkerBytes;
  SectionHead head = ReadHead(jpeg, position);
  if (head.marker == kMarkerApp0) {
    position += kMarkerBytes + head.length;
    head = ReadHead(jpeg, position);
  }
  while (IsMetadata(head.marker)) {
    position += kMarkerBytes + head.length;
    head = ReadHead(jpeg, position);
  }
  jpeg.SetPosition(position);
  return position;
}

int32_t TImageData::SaveExif(TStream& stream) const {
  WriteBytes(stream, "\xFF\xD8");
  int32_t count = 0;
  if (ExifSegment != nullptr) {
    count += WriteSection(stream, *ExifSegment);
  } else if (HeaderSegment != nullptr) {
    count += WriteSection(stream, *HeaderSegment);
  } else {
    count += WriteBytes(stream, kDefaultHeader);
  }
  if (IPTCSegment != nullptr) count += WriteSection(stream, *IPTCSegment);
  if (CommentSegment != nullptr) count += WriteSection(stream, *CommentSegment);
  for (int32_t i = 1; i <= OthersCount; ++i) {
    count += WriteSection(stream, *OtherSegments[static_cast<size_t>(i)]);
  }
  return count;
}

void TImageData::WriteExifJpeg(TJPEGImage& image, const std::string& FileName) const {
  try {
    TMemoryStream jpeg;
    image.SaveToStream(jpeg);
    AtomicFile file(FileName);
    WriteImageToStream(jpeg, file, false);
    file.Commit();
  } catch (Error& error) {
    error.AttachFile(FileName);
    throw;
  }
}

void TImageData::WriteImageToStream(TStream& jpegStream, TStream& target, bool OhneH) const {
  if (!OhneH) SaveExif(target);
  detail::SkipEncoderMetadata(jpegStream);
  CopyRest(jpegStream, target);
}

}  // namespace rasterkit
