#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// One entry of a directory: the place of its values, which are not read yet.
struct TiffEntry {
  uint16_t type = 0;
  uint64_t count = 0;
  /// From the beginning of the TIFF file.
  uint64_t valuesAt = 0;
};

/// The directories of a TIFF or BigTIFF file as numbers and texts, read without libtiff. All is
/// checked against the size of the file, and no more than the requested values is kept in
/// memory.
class TiffDirectory {
 public:
  /// Reads header and first directory of the file that starts at the stream's position. Throws
  /// FormatError if there is none.
  explicit TiffDirectory(TStream& stream);

  bool IsBigTiff() const { return isBig_; }
  bool IsBigEndian() const { return isBigEndian_; }
  bool Has(uint16_t tag) const { return entries_.contains(tag); }

  /// Gives at most `most` values of the tag as numbers; empty if the tag is absent, has a type
  /// without numbers, or reaches beyond the end of the file.
  std::vector<double> Numbers(uint16_t tag, size_t most) const;
  /// Gives the first value of the tag as a whole number from 0 to 2^32 - 1.
  std::optional<uint32_t> Number(uint16_t tag) const;
  /// Gives a tag of bytes as text up to its first zero, at most 4096 bytes, without blanks around
  /// it.
  std::string Text(uint16_t tag) const;

  struct Pages {
    int all = 0;
    /// Those that are marked as a smaller copy or the mask of another one.
    int secondary = 0;
  };
  /// Counts the directories of the main chain, which may be circular; at most `most`.
  Pages CountDirectories(int most) const;

 private:
  struct Location {
    uint64_t entries = 0, at = 0;
    uint64_t End(uint64_t entryBytes) const { return at + entries * entryBytes; }
  };

  bool ReadAt(uint64_t position, uint8_t* target, size_t count) const;
  uint64_t Integer(const uint8_t* bytes, int count) const;
  std::optional<uint64_t> IntegerAt(uint64_t position, int count) const;
  std::optional<Location> LocateDirectory(uint64_t offset) const;
  bool IsSecondary(const Location& directory) const;
  void ReadHeader();
  void ReadEntries(const Location& place);
  double Value(const uint8_t* bytes, uint16_t type) const;

  TStream& stream_;
  uint64_t start_ = 0, size_ = 0;
  bool isBig_ = false, isBigEndian_ = false;
  uint64_t first_ = 0;
  std::unordered_map<uint16_t, TiffEntry> entries_;
};

/// Throws FormatError if the directory lacks the essential tags of pixels, which libtiff would
/// invent.
void RequirePixelTags(const TiffDirectory& directory);

}  // namespace rasterkit::detail
