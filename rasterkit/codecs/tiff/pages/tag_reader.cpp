#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_set>

#include <fmt/format.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/tag_reader.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

constexpr uint64_t kMostEntries = 65536;
constexpr int kMostPages = 65535;
constexpr size_t kMostRelatives = 256;

}  // namespace

int TagTypeBytes(uint16_t type) {
  switch (type) {
    case TIFF_BYTE:
    case TIFF_ASCII:
    case TIFF_SBYTE:
    case TIFF_UNDEFINED:
      return 1;
    case TIFF_SHORT:
    case TIFF_SSHORT:
      return 2;
    case TIFF_LONG:
    case TIFF_SLONG:
    case TIFF_FLOAT:
    case TIFF_IFD:
      return 4;
    case TIFF_RATIONAL:
    case TIFF_SRATIONAL:
    case TIFF_DOUBLE:
    case TIFF_LONG8:
    case TIFF_SLONG8:
    case TIFF_IFD8:
      return 8;
    default:
      return 0;
  }
}

int TagUnitBytes(uint16_t type) {
  return type == TIFF_RATIONAL || type == TIFF_SRATIONAL ? 4 : TagTypeBytes(type);
}

const TagPlace* TagDirectory::Find(uint16_t tag) const {
  const auto found = std::find_if(tags.begin(), tags.end(),
                                  [&](const TagPlace& place) { return place.tag == tag; });
  return found == tags.end() ? nullptr : &*found;
}

TagReader::TagReader(TStream& stream)
    : stream_(stream), start_(stream.Position()), size_(stream.Size() - start_) {
  std::array<uint8_t, 16> bytes{};
  const bool isMarked = ReadAt(0, std::span(bytes).first(8)) && bytes[0] == bytes[1] &&
                        (bytes[0] == 'I' || bytes[0] == 'M');
  if (!isMarked) throw FormatError("TIFF: the header is missing");
  isBigEndian_ = bytes[0] == 'M';
  const uint64_t version = Number(bytes.data() + 2, 2);
  isBig_ = version == 43;
  if (version != 42 && !isBig_) throw FormatError("TIFF: the version of the header is unknown");
  if (isBig_ && !ReadAt(0, bytes)) throw FormatError("TIFF: the header is cut off");
  first_ = isBig_ ? Number(bytes.data() + 8, 8) : Number(bytes.data() + 4, 4);
}

bool TagReader::ReadAt(uint64_t at, std::span<uint8_t> target) const {
  if (at > size_ || target.size() > size_ - at) return false;
  stream_.SetPosition(start_ + at);
  return stream_.Read(target) == target.size();
}

uint64_t TagReader::Number(const uint8_t* bytes, int count) const {
  uint64_t value = 0;
  for (int i = 0; i < count; i++) value = value << 8 | bytes[isBigEndian_ ? i : count - 1 - i];
  return value;
}

std::optional<uint64_t> TagReader::NumberAt(uint64_t at, int count) const {
  std::array<uint8_t, 8> bytes{};
  if (!ReadAt(at, std::span(bytes).first(static_cast<size_t>(count)))) return std::nullopt;
  return Number(bytes.data(), count);
}

std::optional<uint64_t> TagReader::Entries(uint64_t at) const {
  if (at == 0) return std::nullopt;
  const auto count = NumberAt(at, static_cast<int>(CountBytes()));
  if (!count || *count == 0 || *count > kMostEntries) return std::nullopt;
  return count;
}

std::optional<TagDirectory> TagReader::Directory(uint64_t at) const {
  const auto entries = Entries(at);
  if (!entries) return std::nullopt;
  TagDirectory directory;
  directory.at = at;
  directory.next = Next(at);
  directory.entryBytes = *entries * EntryBytes();
  const int countBytes = isBig_ ? 8 : 4;
  std::unordered_set<uint16_t> seen;
  for (uint64_t i = 0; i < *entries; i++) {
    const uint64_t entryAt = at + CountBytes() + i * EntryBytes();
    std::array<uint8_t, 20> bytes{};
    if (!ReadAt(entryAt, std::span(bytes).first(static_cast<size_t>(EntryBytes())))) break;
    TagPlace place;
    place.tag = static_cast<uint16_t>(Number(bytes.data(), 2));
    place.type = static_cast<uint16_t>(Number(bytes.data() + 2, 2));
    place.count = Number(bytes.data() + 4, countBytes);
    if (!seen.insert(place.tag).second) continue;
    const auto valueBytes = static_cast<uint64_t>(TagTypeBytes(place.type));
    const auto inside = static_cast<uint64_t>(countBytes);
    const bool isKnown = valueBytes != 0 && place.count <= size_ / valueBytes;
    if (isKnown) {
      place.at = place.count <= inside / valueBytes
                     ? entryAt + 4 + inside
                     : Number(bytes.data() + 4 + countBytes, countBytes);
    }
    if (isKnown && place.at <= size_ && place.Bytes() <= size_ - place.at) {
      directory.tags.push_back(place);
    } else {
      directory.damaged.push_back(place.tag);
    }
  }
  if (directory.tags.empty()) return std::nullopt;
  return directory;
}

uint32_t TagReader::SubfileTypeOf(std::span<const uint8_t> entries) const {
  const auto entryBytes = static_cast<size_t>(EntryBytes());
  std::optional<uint32_t> old;
  for (size_t at = 0; at + entryBytes <= entries.size(); at += entryBytes) {
    const uint8_t* entry = entries.data() + at;
    const uint64_t tag = Number(entry, 2), type = Number(entry + 2, 2);
    // In a list of numbers the entry holds a place instead.
    const bool isKnown =
        (type == TIFF_SHORT || type == TIFF_LONG) && Number(entry + 4, isBig_ ? 8 : 4) == 1;
    if ((tag != TIFFTAG_SUBFILETYPE && tag != TIFFTAG_OSUBFILETYPE) || !isKnown) continue;
    const uint64_t kind = Number(entry + (isBig_ ? 12 : 8), type == TIFF_SHORT ? 2 : 4);
    if (tag == TIFFTAG_SUBFILETYPE) return static_cast<uint32_t>(kind);
    if (!old) old = kind == OFILETYPE_REDUCEDIMAGE ? FILETYPE_REDUCEDIMAGE : 0;
  }
  return old.value_or(0);
}

std::optional<TagReader::ChainLink> TagReader::Link(uint64_t at) const {
  if (at == 0 || at >= size_) return std::nullopt;
  // Most directories fit. Where entries are sorted, tags 254 and 255 are the first ones.
  constexpr uint64_t kUsualBytes = 512;
  std::array<uint8_t, kUsualBytes> bytes{};
  const auto head =
      std::span(bytes).first(static_cast<size_t>(std::min<uint64_t>(kUsualBytes, size_ - at)));
  if (head.size() < CountBytes() || !ReadAt(at, head)) return std::nullopt;
  const uint64_t count = Number(bytes.data(), static_cast<int>(CountBytes()));
  if (count == 0 || count > kMostEntries) return std::nullopt;
  const auto entries = head.subspan(static_cast<size_t>(CountBytes()));
  const uint64_t shown = count * EntryBytes();
  ChainLink link;
  link.subfileType =
      SubfileTypeOf(entries.first(static_cast<size_t>(std::min<uint64_t>(shown, entries.size()))));
  link.at = at + CountBytes() + count * EntryBytes();
  const int width = isBig_ ? 8 : 4;
  const uint64_t inside = link.at - at;
  if (inside + static_cast<uint64_t>(width) <= head.size()) {
    link.next = Number(bytes.data() + inside, width);
    return link;
  }
  const auto next = NumberAt(link.at, width);
  link.next = next.value_or(0);
  link.isCutOff = !next && link.at != size_;
  return link;
}

uint32_t TagReader::SubfileType(uint64_t at) const {
  const auto link = Link(at);
  return link ? link->subfileType : 0;
}

uint64_t TagReader::Next(uint64_t at) const {
  const auto entries = Entries(at);
  if (!entries) return 0;
  return NumberAt(at + CountBytes() + *entries * EntryBytes(), isBig_ ? 8 : 4).value_or(0);
}

std::vector<uint8_t> TagReader::Raw(const TagPlace& place) const {
  std::vector<uint8_t> bytes(static_cast<size_t>(place.Bytes()));
  if (!ReadAt(place.at, bytes)) return {};
  return bytes;
}

TagValue TagReader::Value(const TagPlace& place) const {
  TagValue value{place.tag, place.type, place.count, Raw(place)};
  const auto unit = static_cast<size_t>(TagUnitBytes(place.type));
  if (!isBigEndian_ || unit < 2) return value;
  for (size_t at = 0; at + unit <= value.bytes.size(); at += unit) {
    std::reverse(value.bytes.data() + at, value.bytes.data() + at + unit);
  }
  return value;
}

std::vector<uint64_t> TagReader::Integers(const TagPlace& place, uint64_t most) const {
  switch (place.type) {
    case TIFF_BYTE:
    case TIFF_UNDEFINED:
    case TIFF_SHORT:
    case TIFF_LONG:
    case TIFF_IFD:
    case TIFF_LONG8:
    case TIFF_IFD8:
      break;
    default:
      return {};
  }
  TagPlace wanted = place;
  wanted.count = std::min(place.count, most);
  const std::vector<uint8_t> bytes = Raw(wanted);
  const int size = TagTypeBytes(place.type);
  std::vector<uint64_t> values;
  values.reserve(bytes.size() / static_cast<size_t>(size));
  for (size_t at = 0; at < bytes.size(); at += static_cast<size_t>(size)) {
    values.push_back(Number(bytes.data() + at, size));
  }
  return values;
}

std::vector<uint64_t> TagReader::Integers(const TagDirectory& directory, uint16_t tag,
                                          uint64_t most) const {
  const TagPlace* place = directory.Find(tag);
  return place ? Integers(*place, most) : std::vector<uint64_t>();
}

uint64_t TagReader::Integer(const TagDirectory& directory, uint16_t tag, uint64_t otherwise) const {
  const std::vector<uint64_t> values = Integers(directory, tag, 1);
  return values.empty() ? otherwise : values[0];
}

double TagReader::Fraction(const TagDirectory& directory, uint16_t tag) const {
  const TagPlace* place = directory.Find(tag);
  if (!place || place->count == 0) return 0;
  if (place->type != TIFF_RATIONAL) return static_cast<double>(Integer(directory, tag, 0));
  std::array<uint8_t, 8> bytes{};
  if (!ReadAt(place->at, bytes)) return 0;
  const uint64_t below = Number(bytes.data() + 4, 4);
  return below == 0 ? 0 : static_cast<double>(Number(bytes.data(), 4)) / static_cast<double>(below);
}

std::string LostPages(ChainEnd end, int pages) {
  switch (end) {
    case ChainEnd::damage:
      return fmt::format("the chain of pages ends in damage after page {}", pages);
    case ChainEnd::circle:
      return fmt::format("the chain of pages leads back to itself after page {}", pages);
    case ChainEnd::limit:
      return fmt::format("pages after page {} are not read: the file has too many", pages);
    default:
      return {};
  }
}

PageFamily FamilyOf(const TagReader& reader, const TagDirectory& first) {
  PageFamily family;
  family.pages = 1;
  std::unordered_set<uint64_t> seen = {first.at};
  bool isOfFirst = true;
  const auto firstLink = reader.Link(first.at);
  if (!firstLink || firstLink->isCutOff) family.end = ChainEnd::damage;
  uint64_t at = first.next;
  while (at != 0) {
    RequireTime();
    const auto link = reader.Link(at);
    const bool isNew = seen.insert(at).second;
    if (!isNew || !link || seen.size() > kMostPages) {
      family.end = !isNew ? ChainEnd::circle : !link ? ChainEnd::damage : ChainEnd::limit;
      break;
    }
    if (link->isCutOff) family.end = ChainEnd::damage;
    const bool isPage = (link->subfileType & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) == 0;
    if (isPage) {
      family.pages++;
      isOfFirst = false;
    } else if (isOfFirst && family.following.size() < kMostRelatives) {
      family.following.push_back(at);
    }
    at = link->next;
  }
  for (const uint64_t below : reader.Integers(first, TIFFTAG_SUBIFD, kMostRelatives)) {
    if (family.below.size() + family.following.size() >= kMostRelatives) break;
    if (seen.insert(below).second && reader.IsDirectory(below)) family.below.push_back(below);
  }
  return family;
}

}  // namespace rasterkit::detail
