#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/metadata/tag_value.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Bytes of one value of a TIFF tag; 0 for an unknown type.
int TagTypeBytes(uint16_t type);
/// Bytes of the numbers that a value is made of: 4 for a rational, which has 8.
int TagUnitBytes(uint16_t type);

/// The place of a tag's values, counted from the beginning of the TIFF file.
struct TagPlace {
  uint16_t tag = 0, type = 0;
  uint64_t count = 0, at = 0;

  uint64_t Bytes() const { return count * static_cast<uint64_t>(TagTypeBytes(type)); }
};

/// One directory of a TIFF file: its tags in the order of the file, each once, with values within
/// the file.
struct TagDirectory {
  uint64_t at = 0, next = 0;
  /// Bytes of its entries, repeated and damaged ones included.
  uint64_t entryBytes = 0;
  std::vector<TagPlace> tags;
  /// Tags that are skipped because of their type or because they reach beyond the end.
  std::vector<uint16_t> damaged;

  const TagPlace* Find(uint16_t tag) const;
  bool Has(uint16_t tag) const { return Find(tag) != nullptr; }
};

/// Reads directories and values of a TIFF or BigTIFF file without libtiff. All places are checked
/// against the size of the file.
class TagReader {
 public:
  /// Reads the header of the file that starts at the stream's position. Throws FormatError if there
  /// is none. The stream must outlive the reader.
  explicit TagReader(TStream& stream);

  bool IsBig() const { return isBig_; }
  bool IsBigEndian() const { return isBigEndian_; }
  uint64_t Size() const { return size_; }
  /// Where the file starts in the stream.
  uint64_t Start() const { return start_; }
  /// Place of the first directory.
  uint64_t First() const { return first_; }

  /// Nothing if there is no directory with tags.
  std::optional<TagDirectory> Directory(uint64_t at) const;
  /// True if there is a directory with entries.
  bool IsDirectory(uint64_t at) const { return Entries(at).has_value(); }
  /// The bits of tag 254 (or of its forerunner 255) of a directory: 1 smaller copy, 2 page, 4 mask.
  uint32_t SubfileType(uint64_t at) const;
  /// The place of the directory that follows; 0 if there is none.
  uint64_t Next(uint64_t at) const;

  struct ChainLink {
    /// Place of the number that leads to the next directory, and that number; 0 if it is cut off.
    uint64_t at = 0, next = 0;
    uint32_t subfileType = 0;
    /// True if the directory ends before that number does. Some writers leave it out at the end of
    /// a file, which means that no other follows.
    bool isCutOff = false;
  };
  /// What a walk along the chain needs of a directory, mostly with one read; nothing if there is no
  /// directory with entries.
  std::optional<ChainLink> Link(uint64_t at) const;

  /// The bytes as in the file; empty if they cannot be read.
  std::vector<uint8_t> Raw(const TagPlace& place) const;
  /// The values in little-endian order.
  TagValue Value(const TagPlace& place) const;
  /// At most `most` values of an integer type; empty for other types.
  std::vector<uint64_t> Integers(const TagPlace& place, uint64_t most = UINT64_MAX) const;
  /// The same for a tag of a directory; empty if it is absent.
  std::vector<uint64_t> Integers(const TagDirectory& directory, uint16_t tag,
                                 uint64_t most = UINT64_MAX) const;
  /// The first value, or `otherwise`.
  uint64_t Integer(const TagDirectory& directory, uint16_t tag, uint64_t otherwise) const;
  /// The first value of a rational or integer tag as a double; 0 if there is none.
  double Fraction(const TagDirectory& directory, uint16_t tag) const;

  bool ReadAt(uint64_t at, std::span<uint8_t> target) const;

 private:
  uint64_t Number(const uint8_t* bytes, int count) const;
  uint32_t SubfileTypeOf(std::span<const uint8_t> entries) const;
  std::optional<uint64_t> NumberAt(uint64_t at, int count) const;
  /// Number of entries; nothing if the directory lies outside.
  std::optional<uint64_t> Entries(uint64_t at) const;
  uint64_t EntryBytes() const { return isBig_ ? 20 : 12; }
  uint64_t CountBytes() const { return isBig_ ? 8 : 2; }

  TStream& stream_;
  uint64_t start_ = 0, size_ = 0, first_ = 0;
  bool isBig_ = false, isBigEndian_ = false;
};

/// Why a walk along the chain of directories ended.
enum class ChainEnd { last, damage, circle, limit };

/// What that means for the pages after the last one that was found; empty if there are none.
std::string LostPages(ChainEnd end, int pages);

/// The directories that belong to the first page of a file.
struct PageFamily {
  /// Pictures that are neither smaller copies nor masks of another one.
  int pages = 0;
  ChainEnd end = ChainEnd::last;
  /// Places of the smaller copies and masks that follow the first page, and of its further
  /// directories (tag 330), at most 256 in all.
  std::vector<uint64_t> following, below;
};

/// Walks the chain of directories, which may be circular; counts at most 65,535 pages.
PageFamily FamilyOf(const TagReader& reader, const TagDirectory& first);

}  // namespace rasterkit::detail
