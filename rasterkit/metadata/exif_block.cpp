#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using detail::OrderedBytes;

constexpr size_t kHeaderBytes = 8;
constexpr uint16_t kTiffMark = 42;

enum Type : uint16_t {
  typeByte = 1,
  typeText = 2,
  typeWord = 3,
  typeLong = 4,
  typeRational = 5,
  typeSignedByte = 6,
  typeUndefined = 7,
  typeSignedWord = 8,
  typeSignedLong = 9,
  typeSignedRational = 10,
  typeFloat = 11,
  typeDouble = 12,
  typeIfd = 13,
};

/// Numbers of little-endian bytes.
int64_t IntegerAt(std::span<const uint8_t> bytes, size_t at, uint16_t type) {
  const OrderedBytes numbers(bytes, false);
  switch (type) {
    case typeSignedByte:
      return static_cast<int8_t>(bytes[at]);
    case typeWord:
      return numbers.Word(at);
    case typeSignedWord:
      return static_cast<int16_t>(numbers.Word(at));
    case typeLong:
    case typeIfd:
      return numbers.Long(at);
    case typeSignedLong:
      return static_cast<int32_t>(numbers.Long(at));
    default:
      return bytes[at];
  }
}

double FractionAt(std::span<const uint8_t> bytes, size_t at, bool isSigned) {
  const uint16_t part = isSigned ? typeSignedLong : typeLong;
  const auto numerator = static_cast<double>(IntegerAt(bytes, at, part));
  const auto denominator = static_cast<double>(IntegerAt(bytes, at + 4, part));
  return denominator == 0 ? std::numeric_limits<double>::quiet_NaN() : numerator / denominator;
}

double NumberAt(std::span<const uint8_t> bytes, size_t at, uint16_t type) {
  const OrderedBytes numbers(bytes, false);
  switch (type) {
    case typeRational:
    case typeSignedRational:
      return FractionAt(bytes, at, type == typeSignedRational);
    case typeFloat:
      return std::bit_cast<float>(numbers.Long(at));
    case typeDouble:
      return std::bit_cast<double>(uint64_t{numbers.Long(at + 4)} << 32 | numbers.Long(at));
    default:
      return static_cast<double>(IntegerAt(bytes, at, type));
  }
}

bool IsIntegerType(uint16_t type) {
  return type == typeByte || type == typeWord || type == typeLong || type == typeSignedByte ||
         type == typeUndefined || type == typeSignedWord || type == typeSignedLong ||
         type == typeIfd;
}

bool IsNumberType(uint16_t type) {
  return (type >= typeByte && type <= typeIfd) && type != typeText;
}

}  // namespace

ExifBlock::ExifBlock() : ExifBlock(std::vector<uint8_t>{}) {}

ExifBlock::ExifBlock(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {
  if (bytes_.empty()) bytes_ = detail::BuildIfds(std::vector<detail::NewIfd>(1), false);
  Walk();
}

/// Some writers leave out the link of directories that have no next one; other bytes stand there.
bool ExifBlock::Directory::HasNext() const {
  const bool isLinked = id == ExifDirectoryId::main || id == ExifDirectoryId::thumbnail;
  return hasLink && (isLinked || next == 0);
}

detail::ByteRange ExifBlock::Directory::Whole() const {
  constexpr size_t kLinkBytes = 4;
  return {at, Table().size + (HasNext() ? kLinkBytes : 0)};
}

void ExifBlock::Walk() {
  directories_.clear();
  isDamaged_ = true;
  if (bytes_.size() < kHeaderBytes) return;
  const bool isLittle = bytes_[0] == 'I' && bytes_[1] == 'I';
  isBigEndian_ = bytes_[0] == 'M' && bytes_[1] == 'M';
  if (!isLittle && !isBigEndian_) return;
  const OrderedBytes numbers(bytes_, isBigEndian_);
  const size_t start = numbers.Long(4);
  isDamaged_ = numbers.Word(2) != kTiffMark || start == 0;
  constexpr size_t kPointerAt = 4;
  WalkDirectory(ExifDirectoryId::main, start == 0 ? kHeaderBytes : start, kPointerAt);
  FollowPointer(ExifDirectoryId::main, exif::kExifPointer, ExifDirectoryId::exif);
  FollowPointer(ExifDirectoryId::main, exif::kGpsPointer, ExifDirectoryId::gps);
  FollowPointer(ExifDirectoryId::exif, exif::kInteropPointer, ExifDirectoryId::interop);
  const Directory* main = FindDirectory(ExifDirectoryId::main);
  if (main != nullptr && main->next != 0 && !main->isCut) {
    WalkDirectory(ExifDirectoryId::thumbnail, main->next, main->LinkAt());
  }
  isDamaged_ = isDamaged_ || HasValuesInTables();
}

/// A change of a directory would change such values.
bool ExifBlock::HasValuesInTables() const {
  const auto isInTable = [&](const Entry& entry) {
    return !entry.IsInline() &&
           std::any_of(directories_.begin(), directories_.end(), [&](const Directory& directory) {
             return directory.Whole().Overlaps(entry.Values());
           });
  };
  return std::any_of(directories_.begin(), directories_.end(), [&](const Directory& directory) {
    return std::any_of(directory.entries.begin(), directory.entries.end(), isInTable);
  });
}

void ExifBlock::FollowPointer(ExifDirectoryId from, uint16_t tag, ExifDirectoryId to) {
  const Entry* entry = Find(from, tag);
  const uint32_t at = Number(from, tag).value_or(0);
  if (entry != nullptr && at != 0) WalkDirectory(to, at, entry->entryAt + 8);
}

void ExifBlock::WalkDirectory(ExifDirectoryId id, size_t at, size_t pointerAt) {
  Directory directory;
  static_cast<detail::Ifd&>(directory) = detail::ReadIfd(bytes_, at, isBigEndian_);
  directory.id = id;
  directory.pointerAt = pointerAt;
  // Loops, and tables that lie across each other: the first one counts.
  const bool isOverlapping = std::any_of(
      directories_.begin(), directories_.end(),
      [&](const Directory& other) { return other.Table().Overlaps(directory.Table()); });
  const bool isOutside = at < kHeaderBytes || at + 2 > bytes_.size();
  isDamaged_ = isDamaged_ || directory.isDamaged || isOverlapping || isOutside;
  if (!isOverlapping && !isOutside) directories_.push_back(std::move(directory));
}

bool ExifBlock::IsEmpty() const {
  return std::all_of(directories_.begin(), directories_.end(),
                     [](const Directory& directory) { return directory.entries.empty(); });
}

const ExifBlock::Directory* ExifBlock::FindDirectory(ExifDirectoryId id) const {
  const auto found = std::find_if(directories_.begin(), directories_.end(),
                                  [id](const Directory& one) { return one.id == id; });
  return found == directories_.end() ? nullptr : &*found;
}

const ExifBlock::Entry* ExifBlock::Find(ExifDirectoryId directory, uint16_t tag) const {
  const Directory* place = FindDirectory(directory);
  if (place == nullptr) return nullptr;
  const auto found = std::find_if(place->entries.begin(), place->entries.end(),
                                  [tag](const Entry& entry) { return entry.tag == tag; });
  return found == place->entries.end() ? nullptr : &*found;
}

TagValue ExifBlock::ValueOf(const Entry& entry) const {
  TagValue value = {entry.tag, entry.type, entry.count, {}};
  const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(entry.valuesAt);
  value.bytes.assign(first, first + static_cast<std::ptrdiff_t>(entry.valueBytes));
  if (isBigEndian_) detail::TurnTagBytes(value.bytes, value.type);
  return value;
}

std::optional<TagValue> ExifBlock::Get(ExifDirectoryId directory, uint16_t tag) const {
  const Entry* entry = Find(directory, tag);
  return entry == nullptr ? std::nullopt : std::optional(ValueOf(*entry));
}

std::vector<TagValue> ExifBlock::All(ExifDirectoryId directory) const {
  std::vector<TagValue> values;
  const Directory* place = FindDirectory(directory);
  if (place == nullptr) return values;
  for (const Entry& entry : place->entries) values.push_back(ValueOf(entry));
  return values;
}

std::optional<uint32_t> ExifBlock::Number(ExifDirectoryId directory, uint16_t tag) const {
  const Entry* entry = Find(directory, tag);
  if (entry == nullptr || entry->count == 0 || !IsIntegerType(entry->type)) return std::nullopt;
  return static_cast<uint32_t>(IntegerAt(ValueOf(*entry).bytes, 0, entry->type));
}

std::string ExifBlock::Text(ExifDirectoryId directory, uint16_t tag) const {
  const Entry* entry = Find(directory, tag);
  if (entry == nullptr) return {};
  const std::vector<uint8_t> bytes = ValueOf(*entry).bytes;
  return Trim(std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), uint8_t{0})));
}

std::vector<double> ExifBlock::Numbers(ExifDirectoryId directory, uint16_t tag) const {
  std::vector<double> numbers;
  const Entry* entry = Find(directory, tag);
  if (entry == nullptr || !IsNumberType(entry->type)) return numbers;
  const TagValue value = ValueOf(*entry);
  const size_t step = detail::BytesOfTagType(value.type);
  for (size_t at = 0; at + step <= value.bytes.size(); at += step) {
    numbers.push_back(NumberAt(value.bytes, at, value.type));
  }
  return numbers;
}

std::vector<detail::ByteRange> ExifBlock::ThumbnailRanges() const {
  std::vector<detail::ByteRange> ranges;
  const auto add = [&](uint16_t placeTag, uint16_t sizeTag) {
    const std::vector<double> places = Numbers(ExifDirectoryId::thumbnail, placeTag);
    const std::vector<double> sizes = Numbers(ExifDirectoryId::thumbnail, sizeTag);
    for (size_t i = 0; i < std::min(places.size(), sizes.size()); ++i) {
      if (!(places[i] >= kHeaderBytes && places[i] < static_cast<double>(bytes_.size()))) continue;
      const auto at = static_cast<size_t>(places[i]);
      const auto most = static_cast<double>(bytes_.size() - at);
      // Also 0 for what is no number.
      const double size = sizes[i] > 0 ? std::min(sizes[i], most) : 0;
      ranges.push_back({at, static_cast<size_t>(size)});
    }
  };
  add(exif::kJpegPlace, exif::kJpegBytes);
  add(exif::kStripPlaces, exif::kStripBytes);
  return ranges;
}

std::span<const uint8_t> ExifBlock::Thumbnail() const {
  const uint32_t at = Number(ExifDirectoryId::thumbnail, exif::kJpegPlace).value_or(0);
  const uint32_t size = Number(ExifDirectoryId::thumbnail, exif::kJpegBytes).value_or(0);
  constexpr size_t kLeast = 4;
  if (at < kHeaderBytes || size < kLeast || at > bytes_.size() || size > bytes_.size() - at) {
    return {};
  }
  const auto jpeg = std::span(bytes_).subspan(at, size);
  return jpeg[0] == 0xFF && jpeg[1] == 0xD8 ? jpeg : std::span<const uint8_t>{};
}

bool ExifBlock::HasThumbnail() const {
  return Has(ExifDirectoryId::thumbnail, exif::kJpegPlace) ||
         Has(ExifDirectoryId::thumbnail, exif::kStripPlaces);
}

}  // namespace rasterkit
