#include <algorithm>
#include <utility>

#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/rows/byte_marks.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace detail {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_coding;
using namespace jpeg_marker;

constexpr size_t kAdobeTransformAt = 11;

/// Place of each coefficient of a stored table in row by row order.
constexpr std::array<uint8_t, 64> kNatural = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

using Tables = decltype(JpegForm::tables);

/// Reads the tables of a segment; a truncated one ends it. `isLater`: the scans before have used
/// the tables that are there.
void ReadTables(Bytes payload, bool isLater, Tables& tables) {
  while (!payload.empty()) {
    const bool isWide = payload[0] >> 4 != 0;
    const size_t number = payload[0] & 15;
    const size_t bytes = isWide ? 128 : 64;
    if (number > 3 || payload.size() < 1 + bytes) return;
    std::array<uint16_t, 64> table{};
    for (size_t i = 0; i < table.size(); i++) {
      const uint8_t* value = payload.data() + 1 + (isWide ? 2 * i : i);
      table[kNatural[i]] = static_cast<uint16_t>(isWide ? value[0] << 8 | value[1] : value[0]);
    }
    if (!isLater || !tables[number]) tables[number] = table;
    payload = payload.subspan(1 + bytes);
  }
}

void ReadFrame(const JpegSegment& part, JpegForm& form) {
  const Bytes payload = part.payload;
  if (payload.size() < 6) throw FormatError("JPEG: the frame header is too short");
  form.progressive = (part.marker & 3) == 2;
  form.arithmetic = part.marker >= 0xC9;
  const size_t count = std::min<size_t>(payload[5], (payload.size() - 6) / 3);
  for (size_t i = 0; i < count; i++) {
    const uint8_t* entry = payload.data() + 6 + 3 * i;
    form.components.push_back({entry[0], entry[1] >> 4, entry[1] & 15, entry[2]});
  }
}

}  // namespace

bool IsAdobeSegment(Bytes payload) {
  return StartsWith(payload, "Adobe") && payload.size() > kAdobeTransformAt;
}

std::optional<int> AdobeTransformOf(const JpegParts& parts) {
  std::optional<int> transform;
  for (const JpegSegment& part : parts.head) {
    if (part.marker == kApp14 && IsAdobeSegment(part.payload)) {
      transform = part.payload[kAdobeTransformAt];
    }
  }
  return transform;
}

JpegForm FormOfJpeg(const JpegParts& parts) {
  JpegForm form;
  bool frameSeen = false;
  for (const JpegSegment& part : parts.head) {
    if (IsFrame(part.marker) && !frameSeen) {
      ReadFrame(part, form);
      frameSeen = true;
    } else if (part.marker == kTables) {
      ReadTables(part.payload, false, form.tables);
    } else if (part.marker == kRestartInterval && part.payload.size() >= 2) {
      form.restartInterval = part.payload[0] << 8 | part.payload[1];
    }
  }
  for (const JpegSegment& part : parts.later) {
    if (part.marker == kTables) ReadTables(part.payload, true, form.tables);
  }
  form.adobeTransform = AdobeTransformOf(parts);
  return form;
}

JpegForm ReadJpegForm(Bytes file) {
  JpegParts parts = ReadJpegHead(file);
  ReadJpegScans(file, parts);
  return FormOfJpeg(parts);
}

}  // namespace detail

JpegForm Transposed(const JpegForm& form) {
  JpegForm turned = form;
  for (JpegForm::Component& component : turned.components) std::swap(component.h, component.v);
  for (size_t number = 0; number < form.tables.size(); number++) {
    if (!form.tables[number]) continue;
    for (size_t i = 0; i < 64; i++) {
      (*turned.tables[number])[i] = (*form.tables[number])[i % 8 * 8 + i / 8];
    }
  }
  return turned;
}

}  // namespace rasterkit
