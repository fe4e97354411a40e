#include "tool/pictures/exif/jpeg_header.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include <fmt/core.h>

#include <rasterkit/jpegexif/jpeg_sections.h>

namespace rasterkit::tool {
namespace {

using Bytes = std::span<const uint8_t>;
using std::string_view_literals::operator""sv;

/// False for restart markers, start of image and TEM, which have no length field.
bool HasLength(uint8_t marker) {
  return marker != 0x01 && !(marker >= 0xD0 && marker <= kMarkerSoi);
}

/// True for frame headers; C4, C8 and CC have another meaning.
bool IsFrame(uint8_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

/// Position of the next marker's 0xFF from `place` on, or the size of the file if there is none.
size_t NextMarker(Bytes jpeg, size_t place) {
  while (place + 1 < jpeg.size()) {
    const auto* found = static_cast<const uint8_t*>(
        std::memchr(jpeg.data() + place, 0xFF, jpeg.size() - 1 - place));
    if (found == nullptr) break;
    place = static_cast<size_t>(found - jpeg.data());
    const uint8_t marker = jpeg[place + 1];
    if (marker != 0 && marker != 0xFF) return place;
    ++place;
  }
  return jpeg.size();
}

size_t WordAt(Bytes bytes, size_t place) {
  return static_cast<size_t>(bytes[place]) << 8 | bytes[place + 1];
}

void TakeFrame(JpegHeader& header, Bytes payload) {
  if (payload.size() < 6 || header.components != 0) return;
  header.height = static_cast<int>(WordAt(payload, 1));
  header.width = static_cast<int>(WordAt(payload, 3));
  header.components = payload[5];
  constexpr size_t kFirstName = 6, kStep = 3;
  for (size_t place = kFirstName; place < payload.size(); place += kStep) {
    header.componentNames += static_cast<char>(payload[place]);
  }
}

bool StartsWith(Bytes bytes, std::string_view text) {
  return bytes.size() >= text.size() && std::memcmp(bytes.data(), text.data(), text.size()) == 0;
}

struct Mark {
  uint8_t marker;
  std::string_view start;
  MetadataKind kind;
};

constexpr std::array<Mark, 9> kMarks = {{
    {kMarkerApp0, "JFIF\0"sv, MetadataKind::jfif},
    {kMarkerApp1, "Exif\0"sv, MetadataKind::exif},
    {kMarkerApp1, "http://ns.adobe.com/x"sv, MetadataKind::xmp},
    {kMarkerApp2, "ICC_PROFILE\0"sv, MetadataKind::profile},
    {kMarkerApp2, "MPF\0"sv, MetadataKind::mpf},
    {kMarkerApp13, ""sv, MetadataKind::iptc},
    {kMarkerApp14, "Adobe"sv, MetadataKind::adobe},
    {kMarkerCom, ""sv, MetadataKind::comment},
    {kMarkerApp0, "JFXX\0"sv, MetadataKind::jfxx},
}};

}  // namespace

const JpegSegment* JpegHeader::Find(MetadataKind kind) const {
  for (const JpegSegment& segment : segments) {
    if (SegmentKind(segment) == kind) return &segment;
  }
  return nullptr;
}

JpegHeader ReadJpegHeader(Bytes jpeg) {
  JpegHeader header;
  size_t place = 2;
  while ((place = NextMarker(jpeg, place)) < jpeg.size()) {
    const uint8_t marker = jpeg[place + 1];
    if (!HasLength(marker)) {
      place += 2;
      continue;
    }
    header.isComplete = marker == kMarkerSos;
    header.scanPlace = place;
    if (marker == kMarkerSos || marker == kMarkerEoi) break;
    if (jpeg.size() - place < 4) break;
    const size_t length = WordAt(jpeg, place + 2);
    if (length < 2 || jpeg.size() - place - 2 < length) break;
    const JpegSegment segment = {marker, place, jpeg.subspan(place + 4, length - 2)};
    if (IsFrame(marker)) TakeFrame(header, segment.payload);
    header.segments.push_back(segment);
    place += length + 2;
  }
  return header;
}

std::string MarkerName(uint8_t marker) {
  if (marker >= 0xE0 && marker <= 0xEF) return fmt::format("APP{}", marker - 0xE0);
  if (IsFrame(marker)) return fmt::format("SOF{}", marker - 0xC0);
  switch (marker) {
    case 0xC4:
      return "DHT";
    case 0xCC:
      return "DAC";
    case 0xDB:
      return "DQT";
    case 0xDD:
      return "DRI";
    case kMarkerCom:
      return "COM";
    default:
      return fmt::format("FF{:02X}", marker);
  }
}

std::optional<MetadataKind> SegmentKind(const JpegSegment& segment) {
  const auto mark = std::find_if(kMarks.begin(), kMarks.end(), [&](const Mark& candidate) {
    return candidate.marker == segment.marker && StartsWith(segment.payload, candidate.start);
  });
  return mark == kMarks.end() ? std::nullopt : std::optional(mark->kind);
}

std::string SectionBytes(const JpegSegment& segment) {
  constexpr size_t kLengthBytes = 2;
  const auto* start = reinterpret_cast<const char*>(segment.payload.data()) - kLengthBytes;
  return {start, segment.payload.size() + kLengthBytes};
}

}  // namespace rasterkit::tool
