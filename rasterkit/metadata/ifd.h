#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/metadata/tag_value.h>

/// Directories of TIFF structures with 32-bit offsets, as in EXIF blocks.
namespace rasterkit::detail {

inline constexpr size_t kIfdEntryBytes = 12, kIfdInlineBytes = 4;

/// Bytes of one value of a type (1 to 13 and 16 to 18); 0 for other types.
size_t BytesOfTagType(uint16_t type);

/// Bytes of the whole that is turned when the byte order changes: 4 for rationals; 1 for texts and
/// for other types.
size_t BytesOfTagUnit(uint16_t type);

/// Turns the values between little-endian and big-endian order, both ways.
void TurnTagBytes(std::span<uint8_t> values, uint16_t type);

/// Numbers of either byte order at places of a block. The caller checks the bounds.
class OrderedBytes {
 public:
  OrderedBytes(std::span<const uint8_t> bytes, bool isBigEndian)
      : bytes_(bytes), isBigEndian_(isBigEndian) {}
  uint16_t Word(size_t at) const;
  uint32_t Long(size_t at) const;

 private:
  std::span<const uint8_t> bytes_;
  bool isBigEndian_;
};

void PutWord(std::span<uint8_t> bytes, size_t at, uint16_t value, bool isBigEndian);
void PutLong(std::span<uint8_t> bytes, size_t at, uint32_t value, bool isBigEndian);

/// A range of a block's bytes.
struct ByteRange {
  size_t at = 0, size = 0;
  size_t End() const { return at + size; }
  bool Overlaps(const ByteRange& other) const {
    return size > 0 && other.size > 0 && at < other.End() && other.at < End();
  }
};

/// An entry of a directory.
struct IfdEntry {
  uint16_t tag = 0, type = 0;
  uint64_t count = 0;
  /// Places in the block: the entry itself (12 bytes) and its values, which may lie inside it.
  /// Types that are unknown have no value bytes.
  size_t entryAt = 0, valuesAt = 0, valueBytes = 0;

  bool IsInline() const { return valueBytes <= kIfdInlineBytes; }
  ByteRange Values() const { return {valuesAt, valueBytes}; }
};

/// A directory as it stands in a block.
struct Ifd {
  size_t at = 0;
  /// Entries that the directory states; `entries` has those that lie in the block with their
  /// values.
  uint16_t statedEntries = 0;
  std::vector<IfdEntry> entries;
  /// Offset of the next directory; 0 if there is none or the link lies behind the block's end.
  uint32_t next = 0;
  bool hasLink = false;
  /// True if the table ends early.
  bool isCut = false;
  /// True if the table ends early or values lie outside the block.
  bool isDamaged = false;

  size_t LinkAt() const { return at + 2 + kIfdEntryBytes * statedEntries; }
  /// Count and entries, without the link.
  ByteRange Table() const { return {at, 2 + kIfdEntryBytes * statedEntries}; }
};

/// Reads a directory. Entries whose values lie outside the block are skipped. Values that take
/// more than three times the block's bytes in all (hostile) cut the table.
Ifd ReadIfd(std::span<const uint8_t> block, size_t at, bool isBigEndian);

/// A directory to be written.
struct NewIfd {
  /// An entry that leads to another directory, by its number in the list.
  struct Pointer {
    uint16_t tag = 0;
    size_t directory = 0;
  };
  std::vector<TagValue> tags;
  std::vector<Pointer> pointers;
};

/// Builds a block: header, then the directories in this order, each with its long values behind it.
/// The values must fit their types and counts.
std::vector<uint8_t> BuildIfds(std::span<const NewIfd> directories, bool isBigEndian);

}  // namespace rasterkit::detail
