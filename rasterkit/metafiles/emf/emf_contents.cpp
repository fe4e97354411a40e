#include <rasterkit/metafiles/emf/emf_contents.h>

namespace rasterkit::detail {
namespace {

bool Draws(EmfType type) {
  switch (type) {
    case EmfType::polyBezier:
    case EmfType::polygon:
    case EmfType::polyline:
    case EmfType::polyBezierTo:
    case EmfType::polylineTo:
    case EmfType::polyPolyline:
    case EmfType::polyPolygon:
    case EmfType::setPixel:
    case EmfType::angleArc:
    case EmfType::ellipse:
    case EmfType::rectangle:
    case EmfType::roundRect:
    case EmfType::arc:
    case EmfType::chord:
    case EmfType::pie:
    case EmfType::extFloodFill:
    case EmfType::lineTo:
    case EmfType::arcTo:
    case EmfType::polyDraw:
    case EmfType::fillPath:
    case EmfType::strokeAndFillPath:
    case EmfType::strokePath:
    case EmfType::fillRgn:
    case EmfType::frameRgn:
    case EmfType::invertRgn:
    case EmfType::paintRgn:
    case EmfType::bitBlt:
    case EmfType::stretchBlt:
    case EmfType::maskBlt:
    case EmfType::plgBlt:
    case EmfType::setDibitsToDevice:
    case EmfType::stretchDibits:
    case EmfType::extTextOutA:
    case EmfType::extTextOutW:
    case EmfType::polyBezier16:
    case EmfType::polygon16:
    case EmfType::polyline16:
    case EmfType::polyBezierTo16:
    case EmfType::polylineTo16:
    case EmfType::polyPolyline16:
    case EmfType::polyPolygon16:
    case EmfType::polyDraw16:
    case EmfType::polyTextOutA:
    case EmfType::polyTextOutW:
    case EmfType::smallTextOut:
    case EmfType::alphaBlend:
    case EmfType::transparentBlt:
    case EmfType::gradientFill:
      return true;
    default:
      return false;
  }
}

/// Types of EMF+ records that draw: from Clear to DrawString, and DrawDriverString.
bool DrawsPlus(uint32_t type) {
  return (type >= 0x4009 && type <= 0x401C) || type == 0x4036;
}

constexpr size_t kPlusRecordHead = 12;

/// Returns whether the EMF+ records of a comment draw. Each record has 16-bit type and flags, and
/// 32-bit sizes of the record and of its data.
bool PlusRecordsDraw(std::span<const uint8_t> bytes) {
  while (bytes.size() >= kPlusRecordHead) {
    MetafileBytes fields(bytes);
    const uint32_t type = fields.Word();
    fields.Skip(2);
    const uint32_t size = fields.Long();
    if (DrawsPlus(type)) return true;
    if (size < kPlusRecordHead || size > bytes.size()) return false;
    bytes = bytes.subspan(size);
  }
  return false;
}

void LookAtComment(const EmfRecord& record, EmfContents& contents) {
  MetafileBytes fields = record.Fields();
  if (fields.Left() < 8) return;
  const uint32_t stated = fields.Long();
  if (fields.Long() != kEmfPlusMark || stated < 4) return;
  contents.hasEmfPlus = true;
  const size_t count = std::min<size_t>(stated - 4, fields.Left());
  contents.hasEmfPlusDrawing = contents.hasEmfPlusDrawing || PlusRecordsDraw(fields.Take(count));
}

}  // namespace

EmfContents ReadEmfContents(std::span<const uint8_t> bytes) {
  EmfRecords records(bytes);
  std::optional<EmfRecord> record = records.Next();
  if (!record) throw FormatError(records.Damage());
  EmfContents contents;
  contents.header = ReadEmfHeader(*record);
  for (; record; record = records.Next()) {
    ++contents.records;
    contents.hasDrawing = contents.hasDrawing || Draws(record->type);
    if (record->type == EmfType::comment) LookAtComment(*record, contents);
  }
  contents.damage = records.Damage();
  return contents;
}

}  // namespace rasterkit::detail
