#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <unordered_set>

#include <rasterkit/codecs/tiff/tiff_directory.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

/// Most entries of a directory: tag numbers are 16-bit.
constexpr uint64_t kMostEntries = 65536;
constexpr size_t kMostTextBytes = 4096;

enum Type : uint16_t {
  typeByte = 1,
  typeText = 2,
  typeShort = 3,
  typeLong = 4,
  typeRational = 5,
  typeSignedByte = 6,
  typeUndefined = 7,
  typeSignedShort = 8,
  typeSignedLong = 9,
  typeSignedRational = 10,
  typeFloat = 11,
  typeDouble = 12,
  typeDirectory = 13,
  typeLong8 = 16,
  typeSignedLong8 = 17,
  typeDirectory8 = 18
};

/// Bytes of one value; 0 for an unknown type.
int TypeBytes(uint16_t type) {
  switch (type) {
    case typeByte:
    case typeText:
    case typeSignedByte:
    case typeUndefined:
      return 1;
    case typeShort:
    case typeSignedShort:
      return 2;
    case typeLong:
    case typeSignedLong:
    case typeFloat:
    case typeDirectory:
      return 4;
    case typeRational:
    case typeSignedRational:
    case typeDouble:
    case typeLong8:
    case typeSignedLong8:
    case typeDirectory8:
      return 8;
    default:
      return 0;
  }
}

std::string Trimmed(const std::string& text) {
  constexpr const char* kBlanks = " \t\r\n";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

TiffDirectory::TiffDirectory(TStream& stream)
    : stream_(stream), start_(stream.Position()), size_(stream.Size() - start_) {
  ReadHeader();
  const auto place = LocateDirectory(first_);
  if (first_ == 0 || !place || place->entries == 0) {
    throw FormatError("TIFF: the first directory cannot be read");
  }
  ReadEntries(*place);
}

bool TiffDirectory::ReadAt(uint64_t position, uint8_t* target, size_t count) const {
  if (position > size_ || count > size_ - position) return false;
  stream_.SetPosition(start_ + position);
  return stream_.Read({target, count}) == count;
}

uint64_t TiffDirectory::Integer(const uint8_t* bytes, int count) const {
  uint64_t value = 0;
  for (int i = 0; i < count; i++) value = value << 8 | bytes[isBigEndian_ ? i : count - 1 - i];
  return value;
}

std::optional<uint64_t> TiffDirectory::IntegerAt(uint64_t position, int count) const {
  std::array<uint8_t, 8> bytes{};
  if (!ReadAt(position, bytes.data(), static_cast<size_t>(count))) return std::nullopt;
  return Integer(bytes.data(), count);
}

void TiffDirectory::ReadHeader() {
  std::array<uint8_t, 16> bytes{};
  const bool isMarked =
      ReadAt(0, bytes.data(), 8) && bytes[0] == bytes[1] && (bytes[0] == 'I' || bytes[0] == 'M');
  if (!isMarked) throw FormatError("TIFF: the header is missing");
  isBigEndian_ = bytes[0] == 'M';
  const uint64_t version = Integer(bytes.data() + 2, 2);
  isBig_ = version == 43;
  if (version != 42 && !isBig_) throw FormatError("TIFF: the version of the header is unknown");
  if (isBig_ && !ReadAt(0, bytes.data(), 16)) throw FormatError("TIFF: the header is cut off");
  first_ = isBig_ ? Integer(bytes.data() + 8, 8) : Integer(bytes.data() + 4, 4);
}

std::optional<TiffDirectory::Location> TiffDirectory::LocateDirectory(uint64_t offset) const {
  const int countBytes = isBig_ ? 8 : 2;
  const auto count = IntegerAt(offset, countBytes);
  if (!count || *count > kMostEntries) return std::nullopt;
  return Location{*count, offset + static_cast<uint64_t>(countBytes)};
}

void TiffDirectory::ReadEntries(const Location& place) {
  const int entryBytes = isBig_ ? 20 : 12;
  const int countBytes = isBig_ ? 8 : 4;
  for (uint64_t i = 0; i < place.entries; i++) {
    const uint64_t at = place.at + i * static_cast<uint64_t>(entryBytes);
    std::array<uint8_t, 20> bytes{};
    if (!ReadAt(at, bytes.data(), static_cast<size_t>(entryBytes))) break;
    const auto tag = static_cast<uint16_t>(Integer(bytes.data(), 2));
    TiffEntry entry;
    entry.type = static_cast<uint16_t>(Integer(bytes.data() + 2, 2));
    entry.count = Integer(bytes.data() + 4, countBytes);
    const auto valueBytes = static_cast<uint64_t>(TypeBytes(entry.type));
    if (valueBytes == 0) continue;
    const auto inside = static_cast<uint64_t>(countBytes);
    entry.valuesAt = entry.count <= inside / valueBytes
                         ? at + 4 + inside
                         : Integer(bytes.data() + 4 + countBytes, countBytes);
    entries_.emplace(tag, entry);
  }
  if (entries_.empty()) throw FormatError("TIFF: the first directory cannot be read");
}

double TiffDirectory::Value(const uint8_t* bytes, uint16_t type) const {
  switch (type) {
    case typeSignedByte:
      return static_cast<int8_t>(bytes[0]);
    case typeSignedShort:
      return static_cast<int16_t>(Integer(bytes, 2));
    case typeSignedLong:
      return static_cast<int32_t>(Integer(bytes, 4));
    case typeSignedLong8:
      return static_cast<double>(static_cast<int64_t>(Integer(bytes, 8)));
    case typeRational:
      return static_cast<double>(Integer(bytes, 4)) / static_cast<double>(Integer(bytes + 4, 4));
    case typeSignedRational:
      return static_cast<double>(static_cast<int32_t>(Integer(bytes, 4))) /
             static_cast<double>(static_cast<int32_t>(Integer(bytes + 4, 4)));
    case typeFloat:
      return std::bit_cast<float>(static_cast<uint32_t>(Integer(bytes, 4)));
    case typeDouble:
      return std::bit_cast<double>(Integer(bytes, 8));
    default:
      return static_cast<double>(Integer(bytes, TypeBytes(type)));
  }
}

std::vector<double> TiffDirectory::Numbers(uint16_t tag, size_t most) const {
  const auto found = entries_.find(tag);
  if (found == entries_.end() || found->second.type == typeText) return {};
  const TiffEntry& entry = found->second;
  const auto valueBytes = static_cast<uint64_t>(TypeBytes(entry.type));
  if (valueBytes == 0 || entry.count > size_ / valueBytes) return {};
  std::vector<uint8_t> bytes(
      static_cast<size_t>(std::min<uint64_t>(entry.count, most) * valueBytes));
  if (!ReadAt(entry.valuesAt, bytes.data(), bytes.size())) return {};
  std::vector<double> values;
  for (size_t at = 0; at < bytes.size(); at += static_cast<size_t>(valueBytes)) {
    values.push_back(Value(bytes.data() + at, entry.type));
  }
  return values;
}

std::optional<uint32_t> TiffDirectory::Number(uint16_t tag) const {
  const auto values = Numbers(tag, 1);
  constexpr double kGreatest = 4294967295.0;
  if (values.empty() || !(values[0] >= 0 && values[0] <= kGreatest)) return std::nullopt;
  return static_cast<uint32_t>(values[0]);
}

std::string TiffDirectory::Text(uint16_t tag) const {
  const auto found = entries_.find(tag);
  if (found == entries_.end() || TypeBytes(found->second.type) != 1) return {};
  std::string text(static_cast<size_t>(std::min<uint64_t>(found->second.count, kMostTextBytes)),
                   '\0');
  if (!ReadAt(found->second.valuesAt, reinterpret_cast<uint8_t*>(text.data()), text.size())) {
    return {};
  }
  return Trimmed(text.substr(0, text.find('\0')));
}

/// Entries are sorted, and this tag has the lowest number.
bool TiffDirectory::IsSecondary(const Location& directory) const {
  constexpr uint64_t kTagSubfileType = 254, kReducedOrMask = 1 | 4;
  if (directory.entries == 0 || IntegerAt(directory.at, 2) != kTagSubfileType) return false;
  const bool isShort = IntegerAt(directory.at + 2, 2) == typeShort;
  const auto kind = IntegerAt(directory.at + (isBig_ ? 12 : 8), isShort ? 2 : 4);
  return kind && (*kind & kReducedOrMask) != 0;
}

TiffDirectory::Pages TiffDirectory::CountDirectories(int most) const {
  const uint64_t entryBytes = isBig_ ? 20 : 12;
  std::unordered_set<uint64_t> seen;
  uint64_t offset = first_;
  Pages pages;
  while (pages.all < most && offset != 0 && seen.insert(offset).second) {
    const auto place = LocateDirectory(offset);
    if (!place) break;
    pages.all++;
    if (pages.all > 1 && IsSecondary(*place)) pages.secondary++;
    const auto next = IntegerAt(place->End(entryBytes), isBig_ ? 8 : 4);
    if (!next) break;
    offset = *next;
  }
  return pages;
}

void RequirePixelTags(const TiffDirectory& directory) {
  constexpr uint16_t kPhotometric = 262, kStripByteCounts = 279, kTileByteCounts = 325;
  if (!directory.Has(kStripByteCounts) && !directory.Has(kTileByteCounts) &&
      !directory.Has(kPhotometric)) {
    throw FormatError("TIFF: the directory does not describe its pixels");
  }
}

}  // namespace rasterkit::detail
