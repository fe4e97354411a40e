#include <algorithm>
#include <cmath>

#include <rasterkit/metafiles/emf/emf_records.h>
#include <rasterkit/metafiles/records/utf16.h>

namespace rasterkit::detail {
namespace {

/// Offsets of the header's extensions, which older files lack, and the ends of both extensions.
constexpr size_t kPixelFormat = 88, kPixelFormatEnd = 100, kMicrometersEnd = 108;
constexpr size_t kDescriptionLength = 60;

EmfHeader::Box ReadBox(MetafileBytes& fields) {
  EmfHeader::Box box;
  box.left = fields.Int();
  box.top = fields.Int();
  box.right = fields.Int();
  box.bottom = fields.Int();
  return box;
}

/// Returns the size of the header without its description and pixel format, which may lie where a
/// longer header has its extensions.
size_t FixedBytes(const EmfRecord& record, uint32_t descriptionOffset) {
  size_t end = record.bytes.size();
  if (descriptionOffset != 0) end = std::min<size_t>(end, descriptionOffset);
  if (end < kPixelFormatEnd) return end;
  MetafileBytes fields(record.bytes, kPixelFormat);
  const uint32_t formatBytes = fields.Long(), formatOffset = fields.Long();
  if (formatBytes != 0 && formatOffset != 0) end = std::min<size_t>(end, formatOffset);
  return end;
}

/// Returns whether both are the same number of millimeters, apart from rounding.
bool IsNear(double exact, double rounded) {
  return exact > 0 && std::abs(exact - rounded) <= std::max(1.0, rounded / 50);
}

void ReadDescription(const EmfRecord& record, uint32_t length, uint32_t offset, EmfHeader& header) {
  if (length == 0 || offset == 0) return;
  const uint64_t there = offset < record.bytes.size() ? (record.bytes.size() - offset) / 2 : 0;
  MetafileBytes units(record.bytes, std::min<size_t>(offset, record.bytes.size()));
  std::u16string text;
  for (uint64_t i = 0; i < std::min<uint64_t>(length, there); ++i) {
    text.push_back(static_cast<char16_t>(units.Word()));
  }
  const size_t end = text.find(u'\0');
  header.program = Utf8FromUtf16(text.substr(0, end));
  if (end == std::u16string::npos) return;
  const std::u16string rest = text.substr(end + 1);
  header.title = Utf8FromUtf16(rest.substr(0, rest.find(u'\0')));
}

}  // namespace

std::span<const uint8_t> EmfRecord::Part(uint64_t offset, uint64_t count) const {
  if (offset > bytes.size() || count > bytes.size() - offset) {
    throw FormatError("metafile: an offset lies outside its record");
  }
  return bytes.subspan(static_cast<size_t>(offset), static_cast<size_t>(count));
}

EmfHeader ReadEmfHeader(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  EmfHeader header;
  header.bounds = ReadBox(fields);
  header.frame = ReadBox(fields);
  if (record.type != EmfType::header || fields.Long() != kEmfSignature) {
    throw FormatError("EMF: the file does not start with an EMF header");
  }
  fields.Skip(4);  // version
  header.bytes = fields.Long();
  header.records = fields.Long();
  fields.SetPosition(kDescriptionLength);
  const uint32_t length = fields.Long(), offset = fields.Long();
  fields.Skip(4);  // number of palette entries
  header.deviceWidth = fields.Int();
  header.deviceHeight = fields.Int();
  header.deviceWidthMm = fields.Int();
  header.deviceHeightMm = fields.Int();
  if (FixedBytes(record, offset) >= kMicrometersEnd) {
    fields.SetPosition(kPixelFormatEnd);
    const int32_t x = fields.Int(), y = fields.Int();
    // If the offset of the description is wrong, these fields may be a part of the description.
    if (IsNear(x / 1000.0, header.deviceWidthMm) && IsNear(y / 1000.0, header.deviceHeightMm)) {
      header.deviceWidthMm = x / 1000.0;
      header.deviceHeightMm = y / 1000.0;
    }
  }
  ReadDescription(record, length, offset, header);
  return header;
}

std::optional<EmfRecord> EmfRecords::Stop(std::string damage) {
  ended_ = true;
  damage_ = std::move(damage);
  return std::nullopt;
}

std::optional<EmfRecord> EmfRecords::Next() {
  if (ended_) return std::nullopt;
  if (left_.size() < kEmfRecordHead) return Stop("EMF: the data end before the last record");
  MetafileBytes head(left_);
  EmfRecord record;
  record.type = static_cast<EmfType>(head.Long());
  const uint32_t size = head.Long();
  if (size < kEmfRecordHead) {
    return Stop("EMF: a record of " + std::to_string(size) + " bytes is invalid");
  }
  if (size > left_.size()) return Stop("EMF: the data end inside a record");
  record.bytes = left_.first(size);
  left_ = left_.subspan(size);
  ended_ = record.type == EmfType::endOfFile;
  return record;
}

}  // namespace rasterkit::detail
