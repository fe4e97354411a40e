#include <algorithm>
#include <span>

#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/codecs/rows/frame_format.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kMostWarnings = 1000, kMostWarningBytes = 1 << 20, kCountBytes = 4;

}  // namespace

void WriteFrame(FieldWriter& fields, const ImagingFrame& frame) {
  const auto& [format, rows, isConverted] = frame;
  fields.Enum(format);
  WriteRaster(fields, rows);
  fields.Bool(isConverted);
}

FrameHead ReadFrameHead(FieldReader& fields) {
  FrameHead head;
  head.format = fields.Enum(GUID_WICPixelFormat16bppGrayHalf);
  head.rows = ReadRasterHead(fields);
  head.isConverted = fields.Bool();
  const bool hasPixels = head.rows.RowsBytes() > 0;
  if (hasPixels && StoredBitsPerPixel(head.rows.format) != PixelBits(head.format)) {
    ThrowBadMessage("the rows do not fit the pixel format of the frame");
  }
  return head;
}

ImagingFrame NewFrame(const FrameHead& head, uint64_t rowsBytes) {
  ImagingFrame frame;
  frame.format = head.format;
  frame.rows = NewRaster(head.rows, rowsBytes);
  frame.isConverted = head.isConverted;
  return frame;
}

void WriteWarnings(FieldWriter& fields, const std::vector<std::string>& warnings) {
  const std::span first = std::span(warnings).first(std::min(warnings.size(), kMostWarnings));
  fields.List(first, [&](const std::string& warning) { fields.ByteText(warning); });
}

std::vector<std::string> ReadWarnings(FieldReader& fields) {
  return fields.List(kMostWarnings, kCountBytes,
                     [&] { return fields.ByteText(kMostWarningBytes); });
}

void WriteReport(FieldWriter& fields, const CodecReport& report) {
  const auto& [warnings, damage] = report;
  WriteWarnings(fields, warnings);
  WriteWarnings(fields, damage);
}

CodecReport ReadReport(FieldReader& fields) {
  CodecReport report;
  auto& [warnings, damage] = report;
  warnings = ReadWarnings(fields);
  damage = ReadWarnings(fields);
  return report;
}

}  // namespace rasterkit::detail
