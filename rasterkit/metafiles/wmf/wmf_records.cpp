#include <rasterkit/metafiles/wmf/wmf_records.h>

namespace rasterkit::detail {
namespace {

constexpr uint32_t kHeaderWords = kWmfHeader / 2;
constexpr uint32_t kRecordHeadWords = kWmfRecordHead / 2;

bool HasPlacement(std::span<const uint8_t> bytes) {
  return bytes.size() >= kWmfPlaceableHeader && MetafileBytes(bytes).Long() == kWmfPlaceableKey;
}

WmfPlacement ReadPlacement(std::span<const uint8_t> bytes) {
  MetafileBytes fields(bytes, 6);
  WmfPlacement placement;
  placement.left = fields.Short();
  placement.top = fields.Short();
  placement.right = fields.Short();
  placement.bottom = fields.Short();
  placement.unitsPerInch = fields.Word();
  return placement;
}

void CheckHeader(std::span<const uint8_t> bytes) {
  MetafileBytes fields(bytes);
  const bool fits = bytes.size() >= kWmfHeader && [&] {
    const uint32_t type = fields.Word(), words = fields.Word(), version = fields.Word();
    return (type == 1 || type == 2) && words == kHeaderWords &&
           (version == 0x100 || version == 0x300);
  }();
  if (!fits) throw FormatError("WMF: the file does not start with a WMF header");
}

}  // namespace

WmfRecords::WmfRecords(std::span<const uint8_t> bytes) : left_(bytes) {
  if (HasPlacement(bytes)) {
    placement_ = ReadPlacement(bytes);
    left_ = left_.subspan(kWmfPlaceableHeader);
  }
  CheckHeader(left_);
  left_ = left_.subspan(kWmfHeader);
}

std::optional<WmfRecord> WmfRecords::Stop(std::string damage) {
  ended_ = true;
  damage_ = std::move(damage);
  return std::nullopt;
}

std::optional<WmfRecord> WmfRecords::Next() {
  if (ended_) return std::nullopt;
  if (left_.size() < kWmfRecordHead) return Stop("WMF: the data end before the last record");
  MetafileBytes head(left_);
  const uint32_t words = head.Long();
  WmfRecord record;
  record.function = static_cast<WmfFunction>(head.Word());
  // The last record has no parameters, and some programs state no size for it.
  ended_ = record.function == WmfFunction::endOfFile && words <= kRecordHeadWords;
  if (ended_) {
    record.bytes = left_.first(kWmfRecordHead);
    return record;
  }
  if (words < kRecordHeadWords) {
    return Stop("WMF: a record of " + std::to_string(words) + " words is invalid");
  }
  if (words > left_.size() / 2) return Stop("WMF: the data end inside a record");
  record.bytes = left_.first(size_t{2} * words);
  left_ = left_.subspan(record.bytes.size());
  ended_ = record.function == WmfFunction::endOfFile;
  return record;
}

}  // namespace rasterkit::detail
