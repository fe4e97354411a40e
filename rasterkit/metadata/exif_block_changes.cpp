#include <algorithm>
#include <cmath>
#include <numeric>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using detail::ByteRange;
using detail::kIfdEntryBytes;
using detail::kIfdInlineBytes;

constexpr uint16_t kText = 2, kWord = 3, kLong = 4, kRational = 5, kSignedRational = 10;
constexpr size_t kLinkBytes = 4;

/// The directory that a pointer leads to, if the tag is one in its directory.
std::optional<ExifDirectoryId> TargetOf(ExifDirectoryId directory, uint16_t tag) {
  const bool isMain = directory == ExifDirectoryId::main;
  if (isMain && tag == exif::kExifPointer) return ExifDirectoryId::exif;
  if (isMain && tag == exif::kGpsPointer) return ExifDirectoryId::gps;
  if (directory == ExifDirectoryId::exif && tag == exif::kInteropPointer) {
    return ExifDirectoryId::interop;
  }
  return std::nullopt;
}

void AppendLong(std::vector<uint8_t>& bytes, uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
}

struct Fraction {
  uint32_t numerator = 0, denominator = 1;
};

/// The simplest fraction that is the number up to the precision of 32-bit parts.
Fraction FractionOf(double value, double most) {
  for (const double denominator : {1.0, 10.0, 100.0, 1000.0, 10000.0, 100000.0, 1000000.0}) {
    const double numerator = value * denominator;
    if (numerator > most) break;
    const double rounded = std::round(numerator);
    if (std::abs(rounded - numerator) <= 1e-12 * std::max(1.0, numerator)) {
      return {static_cast<uint32_t>(rounded), static_cast<uint32_t>(denominator)};
    }
  }
  // Continued fraction.
  double before = 0, numerator = 1, beforeDenominator = 1, denominator = 0, rest = value;
  Fraction best = {static_cast<uint32_t>(std::min(std::round(value), most)), 1};
  constexpr int kMostTerms = 40;
  for (int i = 0; i < kMostTerms; ++i) {
    const double whole = std::floor(rest);
    const double next = whole * numerator + before;
    const double nextDenominator = whole * denominator + beforeDenominator;
    if (!(next <= most) || !(nextDenominator <= most)) break;
    before = numerator;
    numerator = next;
    beforeDenominator = denominator;
    denominator = nextDenominator;
    best = {static_cast<uint32_t>(numerator), static_cast<uint32_t>(denominator)};
    if (rest == whole || numerator / denominator == value) break;
    rest = 1 / (rest - whole);
  }
  return best;
}

}  // namespace

void ExifBlock::RequireWhole() const {
  if (isDamaged_) throw FormatError("EXIF: the block is damaged, so that it cannot be changed");
}

void ExifBlock::PutWordAt(size_t at, uint16_t value) {
  detail::PutWord(bytes_, at, value, isBigEndian_);
}

void ExifBlock::PutLongAt(size_t at, uint32_t value) {
  detail::PutLong(bytes_, at, value, isBigEndian_);
}

size_t ExifBlock::Append(std::span<const uint8_t> bytes) {
  // Readers would take appended bytes for the link that a table at the end lacks.
  for (const Directory& directory : directories_) {
    if (directory.LinkAt() + kLinkBytes <= bytes_.size()) continue;
    bytes_.resize(directory.LinkAt());
    bytes_.resize(directory.LinkAt() + kLinkBytes);
  }
  if (bytes_.size() % 2 != 0) bytes_.push_back(0);
  const size_t at = bytes_.size();
  if (bytes.size() > UINT32_MAX - at) throw RangeError("EXIF: the block exceeds 4 GiB");
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  return at;
}

std::vector<ByteRange> ExifBlock::UsersOf(const ByteRange& range) const {
  std::vector<ByteRange> users;
  const auto add = [&](const ByteRange& user) {
    if (user.Overlaps(range)) users.push_back(user);
  };
  add({0, 8});
  for (const Directory& directory : directories_) {
    add(directory.Whole());
    for (const Entry& entry : directory.entries) {
      if (!entry.IsInline()) add(entry.Values());
    }
  }
  for (const ByteRange& thumbnail : ThumbnailRanges()) add(thumbnail);
  return users;
}

void ExifBlock::Free(const ByteRange& range) {
  std::vector<ByteRange> users = UsersOf(range);
  users.push_back({range.End(), 0});
  std::sort(users.begin(), users.end(),
            [](const ByteRange& a, const ByteRange& b) { return a.at < b.at; });
  size_t at = range.at;
  for (const ByteRange& user : users) {
    const size_t end = std::min(user.at, range.End());
    if (end > at) {
      std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(at),
                bytes_.begin() + static_cast<std::ptrdiff_t>(end), uint8_t{0});
      free_.push_back({at, end - at});
    }
    at = std::max(at, user.End());
  }
}

void ExifBlock::DropFreeEnd() {
  std::sort(free_.begin(), free_.end(),
            [](const ByteRange& a, const ByteRange& b) { return a.End() < b.End(); });
  while (!free_.empty()) {
    const ByteRange last = free_.back();
    // Zeros behind it are padding.
    const ByteRange rest = {last.End(), bytes_.size() - std::min(last.End(), bytes_.size())};
    const bool hasPadding = std::all_of(bytes_.end() - static_cast<std::ptrdiff_t>(rest.size),
                                        bytes_.end(), [](uint8_t byte) { return byte == 0; }) &&
                            UsersOf(rest).empty();
    if (rest.size > 0 && !hasPadding) return;
    if (last.at < bytes_.size()) bytes_.resize(last.at);
    free_.pop_back();
  }
}

/// Writes count, entries and, where it counts, the link to the next directory.
void ExifBlock::WriteTable(size_t at, const Directory& directory,
                           const std::vector<uint8_t>& entries) {
  PutWordAt(at, static_cast<uint16_t>(entries.size() / kIfdEntryBytes));
  std::copy(entries.begin(), entries.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(at) + 2);
  PutLongAt(at + 2 + entries.size(), directory.HasNext() ? directory.next : 0);
}

/// Puts a table of these entries at the end of the block, or where it is if it is at the end.
void ExifBlock::MoveTable(ExifDirectoryId id, const std::vector<uint8_t>& entries) {
  const Directory directory = *FindDirectory(id);
  const size_t size = 2 + entries.size() + kLinkBytes;
  const bool isAtEnd = directory.hasLink && directory.LinkAt() + kLinkBytes == bytes_.size() &&
                       UsersOf({directory.at, bytes_.size() - directory.at}).size() == 1;
  if (isAtEnd) {
    bytes_.resize(directory.at + size);
    WriteTable(directory.at, directory, entries);
    Walk();
    return;
  }
  const size_t at = Append(std::vector<uint8_t>(size));
  WriteTable(at, directory, entries);
  PutLongAt(directory.pointerAt, static_cast<uint32_t>(at));
  Walk();
  Free(directory.Whole());
}

std::vector<uint8_t> ExifBlock::EntriesOf(ExifDirectoryId id) const {
  const ByteRange table = FindDirectory(id)->Table();
  const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(table.at) + 2;
  return {first, first + static_cast<std::ptrdiff_t>(table.size) - 2};
}

void ExifBlock::AddEntry(ExifDirectoryId id, uint16_t tag) {
  const Directory& directory = *FindDirectory(id);
  std::vector<uint8_t> entries = EntriesOf(id);
  constexpr size_t kMostEntries = 4000;
  if (entries.size() / kIfdEntryBytes >= kMostEntries) {
    throw RangeError("EXIF: the directory is full");
  }
  const auto next = std::find_if(directory.entries.begin(), directory.entries.end(),
                                 [tag](const Entry& entry) { return entry.tag > tag; });
  const auto index = next - directory.entries.begin();
  const auto place = entries.begin() + index * static_cast<std::ptrdiff_t>(kIfdEntryBytes);
  const auto added = static_cast<size_t>(place - entries.begin());
  entries.insert(place, kIfdEntryBytes, uint8_t{0});
  detail::PutWord(entries, added, tag, isBigEndian_);
  detail::PutWord(entries, added + 2, 1, isBigEndian_);
  MoveTable(id, entries);
}

void ExifBlock::EnsureDirectory(ExifDirectoryId id) {
  if (FindDirectory(id) != nullptr || id == ExifDirectoryId::thumbnail) return;
  const bool isInterop = id == ExifDirectoryId::interop;
  const auto parent = isInterop ? ExifDirectoryId::exif : ExifDirectoryId::main;
  const uint16_t tag = isInterop                     ? exif::kInteropPointer
                       : id == ExifDirectoryId::exif ? exif::kExifPointer
                                                     : exif::kGpsPointer;
  EnsureDirectory(parent);
  if (Find(parent, tag) == nullptr) AddEntry(parent, tag);
  const size_t at = Append(std::vector<uint8_t>(2 + kLinkBytes));
  TagValue pointer = {tag, kLong, 1, {}};
  AppendLong(pointer.bytes, static_cast<uint32_t>(at));
  WriteValue(*Find(parent, tag), pointer);
}

void ExifBlock::WriteValue(const Entry& entry, const TagValue& value) {
  const Entry old = entry;
  std::vector<uint8_t> bytes = value.bytes;
  if (isBigEndian_) detail::TurnTagBytes(bytes, value.type);
  PutWordAt(old.entryAt + 2, value.type);
  PutLongAt(old.entryAt + 4, static_cast<uint32_t>(value.count));
  const bool canStay =
      !old.IsInline() && bytes.size() <= old.valueBytes && UsersOf(old.Values()).size() == 1;
  size_t at = old.entryAt + 8;
  if (bytes.size() <= kIfdInlineBytes) {
    bytes.resize(kIfdInlineBytes);
  } else if (canStay) {
    at = old.valuesAt;
  } else {
    at = Append(bytes);
    PutLongAt(old.entryAt + 8, static_cast<uint32_t>(at));
  }
  std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(at));
  Walk();
  if (!old.IsInline()) Free(old.Values());
}

void ExifBlock::Set(ExifDirectoryId directory, const TagValue& value) {
  RequireWhole();
  const size_t unit = detail::BytesOfTagType(value.type);
  if (unit == 0 || value.count > UINT32_MAX || value.bytes.size() / unit != value.count ||
      value.bytes.size() % unit != 0) {
    throw RangeError("EXIF: the bytes of a value do not fit its type and count");
  }
  if (TargetOf(directory, value.tag)) {
    throw RangeError("EXIF: a pointer to a directory is no value");
  }
  if (directory == ExifDirectoryId::thumbnail && FindDirectory(directory) == nullptr) {
    throw RangeError("EXIF: there is no thumbnail to describe");
  }
  EnsureDirectory(directory);
  if (Find(directory, value.tag) == nullptr) AddEntry(directory, value.tag);
  WriteValue(*Find(directory, value.tag), value);
}

void ExifBlock::SetWords(ExifDirectoryId directory, uint16_t tag,
                         std::span<const uint16_t> values) {
  TagValue value = {tag, kWord, values.size(), {}};
  for (const uint16_t word : values) {
    value.bytes.push_back(static_cast<uint8_t>(word));
    value.bytes.push_back(static_cast<uint8_t>(word >> 8));
  }
  Set(directory, value);
}

void ExifBlock::SetLong(ExifDirectoryId directory, uint16_t tag, uint32_t number) {
  TagValue value = {tag, kLong, 1, {}};
  AppendLong(value.bytes, number);
  Set(directory, value);
}

void ExifBlock::SetRational(ExifDirectoryId directory, uint16_t tag, double number) {
  if (!std::isfinite(number)) throw RangeError("EXIF: a fraction must be a finite number");
  const bool isNegative = number < 0;
  const double most = isNegative ? INT32_MAX : UINT32_MAX;
  const Fraction fraction = FractionOf(std::min(std::abs(number), most), most);
  TagValue value = {tag, isNegative ? kSignedRational : kRational, 1, {}};
  AppendLong(value.bytes, isNegative ? 0 - fraction.numerator : fraction.numerator);
  AppendLong(value.bytes, fraction.denominator);
  Set(directory, value);
}

void ExifBlock::SetText(ExifDirectoryId directory, uint16_t tag, const std::string& text) {
  TagValue value = {tag, kText, text.size() + 1, {text.begin(), text.end()}};
  value.bytes.push_back(0);
  Set(directory, value);
}

/// Frees the values of a directory that is no longer reached.
void ExifBlock::FreeDirectory(const Directory& directory) {
  for (const Entry& entry : directory.entries) {
    if (!entry.IsInline()) Free(entry.Values());
  }
  Free(directory.Whole());
}

/// Shifts the later entries and the link within the table.
void ExifBlock::RemoveEntry(ExifDirectoryId id, const Entry& entry) {
  const Entry old = entry;
  const Directory directory = *FindDirectory(id);
  const ByteRange table = directory.Table();
  std::vector<uint8_t> entries = EntriesOf(id);
  const auto gone = entries.begin() + static_cast<std::ptrdiff_t>(old.entryAt - table.at - 2);
  entries.erase(gone, gone + kIfdEntryBytes);
  WriteTable(table.at, directory, entries);
  const ByteRange whole = directory.Whole();
  Walk();
  Free({table.End() - kIfdEntryBytes, whole.End() - table.End() + kIfdEntryBytes});
  if (!old.IsInline()) Free(old.Values());
}

void ExifBlock::Remove(ExifDirectoryId directory, uint16_t tag) {
  if (!Has(directory, tag)) return;
  RequireWhole();
  std::vector<Directory> unreached;
  const auto note = [&](ExifDirectoryId id) {
    if (const Directory* target = FindDirectory(id)) unreached.push_back(*target);
  };
  if (const auto target = TargetOf(directory, tag)) {
    note(*target);
    if (*target == ExifDirectoryId::exif) note(ExifDirectoryId::interop);
  }
  while (const Entry* entry = Find(directory, tag)) RemoveEntry(directory, *entry);
  for (const Directory& one : unreached) FreeDirectory(one);
  if (!unreached.empty()) DropFreeEnd();
}

void ExifBlock::EraseUnused() {
  if (isDamaged_) return;
  Free({0, bytes_.size()});
  DropFreeEnd();
}

bool ExifBlock::SetUpright() {
  const Directory* main = FindDirectory(ExifDirectoryId::main);
  if (main == nullptr) return false;
  bool isFound = false;
  for (const Entry& entry : main->entries) {
    if (entry.tag != exif::kOrientation) continue;
    isFound = true;
    constexpr uint16_t kUpright = 1;
    const bool isWord = entry.type == kWord && entry.count == 1;
    const size_t valueAt = entry.entryAt + 8;
    if (isWord && detail::OrderedBytes(bytes_, isBigEndian_).Word(valueAt) == kUpright) continue;
    PutWordAt(entry.entryAt + 2, kWord);
    PutLongAt(entry.entryAt + 4, 1);
    PutWordAt(valueAt, kUpright);
    PutWordAt(valueAt + 2, 0);
  }
  const bool isKnown = isFound || !main->isDamaged;
  if (isFound) Walk();
  return isKnown;
}

}  // namespace rasterkit
