#include <rasterkit/jpegexif/exif_header.h>
#include <rasterkit/jpegexif/exif_tags.h>
#include <rasterkit/jpegexif/jpeg_sections.h>
#include <rasterkit/jpegexif/raw_orientation.h>

namespace rasterkit {
namespace {

/// No writer puts more sections before a picture; a longer chain is hostile.
constexpr int kMaxSections = 4096;

bool HasLength(int marker) {
  constexpr int kTem = 0x01, kRst0 = 0xD0, kSoi = 0xD8;
  return marker != 0 && marker != kTem && !(marker >= kRst0 && marker <= kSoi);
}

/// Skips to the next marker and returns its second byte; 0 at the end.
int NextMarker(detail::SectionReader& reader) {
  while (!reader.IsPastEnd()) {
    if (reader.ReadByte() != 0xFF) continue;
    int marker = reader.ReadByte();
    while (marker == 0xFF) marker = reader.ReadByte();
    if (HasLength(marker)) return marker;
  }
  return 0;
}

/// Value of an orientation entry of any integer type; 0 if there is none.
int OrientationAt(const TEndInd& order, std::string_view data, int64_t entryPos) {
  const uint32_t type = order.Get16u(data, entryPos + 2);
  switch (type) {
    case 1:
    case 6:
      return ByteAt(data, entryPos + 8);
    case 4:
    case 9:
      return order.Get32s(data, entryPos + 8);
    default:
      return static_cast<int>(order.Get16u(data, entryPos + 8));
  }
}

/// Searches the main directory of an EXIF section ("Data" of a TSection).
std::optional<int> OrientationOf(std::string_view data) {
  TEndInd order;
  if (!detail::TakeByteOrder(data, order)) return std::nullopt;
  const int64_t start = detail::MainDirectoryPos(data, order);
  const int64_t count = order.Get16u(data, start);
  for (int64_t i = 0; i < count; ++i) {
    const int64_t entryPos = start + 2 + 12 * i;
    if (entryPos > static_cast<int64_t>(data.size())) break;
    if (order.Get16u(data, entryPos) != kTagOrientation) continue;
    const int value = OrientationAt(order, data, entryPos);
    if (value >= 1 && value <= 8) return value;
  }
  return std::nullopt;
}

}  // namespace

std::optional<int> ReadRawOrientation(TStream& stream) {
  detail::SectionReader reader(stream);
  if (reader.ReadByte() != 0xFF || reader.ReadByte() != kMarkerSoi) return std::nullopt;
  for (int i = 0; i < kMaxSections; ++i) {
    const int marker = NextMarker(reader);
    if (marker == 0 || marker == kMarkerEoi || marker == kMarkerSos) break;
    const int32_t length = reader.ReadWord();
    if (length < 2) continue;
    if (marker != kMarkerApp1) {
      reader.Skip(static_cast<size_t>(length - 2));
      continue;
    }
    std::string data(2, '\0');
    reader.Append(data, static_cast<size_t>(length - 2));
    if (!detail::IsExifSection(data)) continue;
    if (const std::optional<int> orientation = OrientationOf(data)) return orientation;
  }
  return std::nullopt;
}

std::optional<int> ReadRawOrientation(const std::string& fileName) {
  TFileStream file(fileName);
  return ReadRawOrientation(file);
}

}  // namespace rasterkit
