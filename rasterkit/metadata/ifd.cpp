#include <algorithm>

#include <rasterkit/metadata/ifd.h>

namespace rasterkit::detail {
namespace {

/// Values of entries may be shared, but hardly by all of them.
constexpr uint64_t kMostOverlap = 3;
constexpr uint64_t kUsualValueBytes = 65536;

constexpr size_t kHeaderBytes = 8;

/// No writer comes close to it.
constexpr size_t kMostEntries = 4096;

/// Takes the entry at `at`; false if its values lie outside the block.
bool TakeEntry(std::span<const uint8_t> block, const OrderedBytes& numbers, size_t at,
               IfdEntry& entry) {
  entry.tag = numbers.Word(at);
  entry.type = numbers.Word(at + 2);
  entry.count = numbers.Long(at + 4);
  entry.entryAt = at;
  entry.valuesAt = at + 8;
  const uint64_t bytes = entry.count * BytesOfTagType(entry.type);
  if (bytes > block.size()) return false;
  entry.valueBytes = static_cast<size_t>(bytes);
  if (entry.IsInline()) return true;
  entry.valuesAt = numbers.Long(at + 8);
  return entry.valuesAt >= kHeaderBytes && entry.valuesAt <= block.size() - entry.valueBytes;
}

}  // namespace

size_t BytesOfTagType(uint16_t type) {
  constexpr uint8_t kBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
  return type < std::size(kBytes) ? kBytes[type] : 0;
}

size_t BytesOfTagUnit(uint16_t type) {
  constexpr uint16_t kRational = 5, kSignedRational = 10;
  if (type == kRational || type == kSignedRational) return 4;
  return std::max<size_t>(BytesOfTagType(type), 1);
}

void TurnTagBytes(std::span<uint8_t> values, uint16_t type) {
  const size_t unit = BytesOfTagUnit(type);
  if (unit == 1) return;
  for (size_t at = 0; at + unit <= values.size(); at += unit) {
    const auto part = values.subspan(at, unit);
    std::reverse(part.begin(), part.end());
  }
}

uint16_t OrderedBytes::Word(size_t at) const {
  const unsigned first = bytes_[at], second = bytes_[at + 1];
  return static_cast<uint16_t>(isBigEndian_ ? first << 8 | second : second << 8 | first);
}

uint32_t OrderedBytes::Long(size_t at) const {
  const uint32_t first = Word(at), second = Word(at + 2);
  return isBigEndian_ ? first << 16 | second : second << 16 | first;
}

void PutWord(std::span<uint8_t> bytes, size_t at, uint16_t value, bool isBigEndian) {
  const auto high = static_cast<uint8_t>(value >> 8), low = static_cast<uint8_t>(value);
  bytes[at] = isBigEndian ? high : low;
  bytes[at + 1] = isBigEndian ? low : high;
}

void PutLong(std::span<uint8_t> bytes, size_t at, uint32_t value, bool isBigEndian) {
  const auto high = static_cast<uint16_t>(value >> 16), low = static_cast<uint16_t>(value);
  PutWord(bytes, at, isBigEndian ? high : low, isBigEndian);
  PutWord(bytes, at + 2, isBigEndian ? low : high, isBigEndian);
}

Ifd ReadIfd(std::span<const uint8_t> block, size_t at, bool isBigEndian) {
  Ifd directory;
  directory.at = at;
  if (at > block.size() || block.size() - at < 2) {
    directory.isCut = directory.isDamaged = true;
    return directory;
  }
  const OrderedBytes numbers(block, isBigEndian);
  directory.statedEntries = numbers.Word(at);
  const auto held = std::min<size_t>(
      {directory.statedEntries, kMostEntries, (block.size() - at - 2) / kIfdEntryBytes});
  directory.isCut = held < directory.statedEntries;
  const uint64_t mostBytes = std::max(kMostOverlap * block.size(), kUsualValueBytes);
  uint64_t valueBytes = 0;
  for (size_t i = 0; i < held; ++i) {
    IfdEntry entry;
    if (!TakeEntry(block, numbers, at + 2 + kIfdEntryBytes * i, entry)) {
      directory.isDamaged = true;
      continue;
    }
    valueBytes += entry.valueBytes;
    if (valueBytes > mostBytes) {
      directory.isCut = true;
      break;
    }
    directory.entries.push_back(entry);
  }
  directory.isDamaged = directory.isDamaged || directory.isCut;
  const size_t linkAt = directory.LinkAt();
  directory.hasLink = linkAt + 4 <= block.size();
  if (directory.hasLink) directory.next = numbers.Long(linkAt);
  return directory;
}

namespace {

/// Writes one directory and its long values at the end of the block.
class IfdBuilder {
 public:
  IfdBuilder(std::vector<uint8_t>& block, bool isBigEndian)
      : block_(block), isBigEndian_(isBigEndian) {}

  /// Returns the places of the pointers' values.
  std::vector<size_t> Add(const NewIfd& directory) {
    std::vector<TagValue> tags = directory.tags;
    for (const NewIfd::Pointer& pointer : directory.pointers) {
      tags.push_back({pointer.tag, 4, 1, {0, 0, 0, 0}});
    }
    std::stable_sort(tags.begin(), tags.end(),
                     [](const TagValue& a, const TagValue& b) { return a.tag < b.tag; });
    const size_t at = block_.size();
    block_.resize(at + 2 + kIfdEntryBytes * tags.size() + 4);
    PutWord(block_, at, static_cast<uint16_t>(tags.size()), isBigEndian_);
    for (size_t i = 0; i < tags.size(); ++i) AddEntry(tags[i], at + 2 + kIfdEntryBytes * i);
    if (block_.size() % 2 != 0) block_.push_back(0);
    std::vector<size_t> places;
    for (const NewIfd::Pointer& pointer : directory.pointers) {
      const auto found = std::find_if(tags.begin(), tags.end(), [&](const TagValue& value) {
        return value.tag == pointer.tag;
      });
      places.push_back(at + 2 + kIfdEntryBytes * static_cast<size_t>(found - tags.begin()) + 8);
    }
    return places;
  }

 private:
  void AddEntry(const TagValue& value, size_t entryAt) {
    PutWord(block_, entryAt, value.tag, isBigEndian_);
    PutWord(block_, entryAt + 2, value.type, isBigEndian_);
    PutLong(block_, entryAt + 4, static_cast<uint32_t>(value.count), isBigEndian_);
    size_t valuesAt = entryAt + 8;
    if (value.bytes.size() > kIfdInlineBytes) {
      if (block_.size() % 2 != 0) block_.push_back(0);
      valuesAt = block_.size();
      PutLong(block_, entryAt + 8, static_cast<uint32_t>(valuesAt), isBigEndian_);
      block_.resize(valuesAt + value.bytes.size());
    }
    const auto place = std::span(block_).subspan(valuesAt, value.bytes.size());
    std::copy(value.bytes.begin(), value.bytes.end(), place.begin());
    if (isBigEndian_) TurnTagBytes(place, value.type);
  }

  std::vector<uint8_t>& block_;
  bool isBigEndian_;
};

}  // namespace

std::vector<uint8_t> BuildIfds(std::span<const NewIfd> directories, bool isBigEndian) {
  std::vector<uint8_t> block(kHeaderBytes);
  block[0] = block[1] = isBigEndian ? 'M' : 'I';
  PutWord(block, 2, 42, isBigEndian);
  PutLong(block, 4, kHeaderBytes, isBigEndian);
  IfdBuilder builder(block, isBigEndian);
  std::vector<size_t> starts;
  std::vector<std::vector<size_t>> places;
  for (const NewIfd& directory : directories) {
    starts.push_back(block.size());
    places.push_back(builder.Add(directory));
  }
  for (size_t i = 0; i < directories.size(); ++i) {
    for (size_t p = 0; p < places[i].size(); ++p) {
      const size_t target = starts[directories[i].pointers[p].directory];
      PutLong(block, places[i][p], static_cast<uint32_t>(target), isBigEndian);
    }
  }
  return block;
}

}  // namespace rasterkit::detail
