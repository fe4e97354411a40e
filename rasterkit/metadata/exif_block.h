#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/metadata/ifd.h>
#include <rasterkit/metadata/tag_value.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Directories of an EXIF block.
enum class ExifDirectoryId { main, exif, gps, interop, thumbnail };

/// An EXIF block as a value, read and changed in place.
///
/// A change keeps the place of everything that stays: a value of the same size or smaller is
/// overwritten where it stands, what grows goes to the end of the block, removed bytes become
/// zeros. The maker note keeps its bytes and its offset. Entries whose values lie outside the block
/// are skipped, a directory that ends early is read as far as it goes. Such damaged blocks can be
/// read, and changed by `SetUpright` and `EraseThumbnail`; other changes throw FormatError.
class RASTERKIT_EXPORT ExifBlock {
 public:
  /// An empty little-endian block.
  ExifBlock();
  /// Takes the bytes from the byte-order mark on.
  explicit ExifBlock(std::vector<uint8_t> bytes);

  const std::vector<uint8_t>& Bytes() const { return bytes_; }
  std::vector<uint8_t> TakeBytes() { return std::move(bytes_); }
  bool IsDamaged() const { return isDamaged_; }
  bool IsBigEndian() const { return isBigEndian_; }
  /// True if no directory has an entry.
  bool IsEmpty() const;

  bool Has(ExifDirectoryId directory, uint16_t tag) const {
    return Find(directory, tag) != nullptr;
  }
  std::optional<TagValue> Get(ExifDirectoryId directory, uint16_t tag) const;
  std::vector<TagValue> All(ExifDirectoryId directory) const;
  /// The first integer of an entry; nothing if there is none.
  std::optional<uint32_t> Number(ExifDirectoryId directory, uint16_t tag) const;
  /// Text up to its first zero, without blanks around it.
  std::string Text(ExifDirectoryId directory, uint16_t tag) const;
  /// Rationals and integers as doubles; a fraction with denominator 0 is NaN.
  std::vector<double> Numbers(ExifDirectoryId directory, uint16_t tag) const;

  /// Makes the directory and the pointer to it if needed. Throws RangeError for a value whose bytes
  /// do not fit its type and count, and for pointers to directories.
  void Set(ExifDirectoryId directory, const TagValue& value);
  void SetWords(ExifDirectoryId directory, uint16_t tag, std::span<const uint16_t> values);
  void SetLong(ExifDirectoryId directory, uint16_t tag, uint32_t value);
  void SetRational(ExifDirectoryId directory, uint16_t tag, double value);
  void SetText(ExifDirectoryId directory, uint16_t tag, const std::string& text);
  /// Removes all entries of this tag. With a pointer (34665, 34853, 40965) goes its directory.
  void Remove(ExifDirectoryId directory, uint16_t tag);

  /// The JPEG thumbnail; empty if there is none.
  std::span<const uint8_t> Thumbnail() const;
  /// True if the block has a thumbnail of any kind (JPEG or plain pixels).
  bool HasThumbnail() const;
  /// Replaces the old one, whose bytes are overwritten, by a JPEG file.
  void SetThumbnail(std::span<const uint8_t> jpeg);
  /// Removes the thumbnail, its directory and the link to it; the bytes become zeros, or the block
  /// becomes shorter if they are at its end.
  void RemoveThumbnail();

  /// Overwrites the thumbnail with zeros and the link to it, in a damaged block too. False if the
  /// thumbnail's directory is damaged, so that something of the picture may be left.
  bool EraseThumbnail();

  /// Overwrites all bytes with zeros that no directory, value or thumbnail uses: leftovers of other
  /// programs, and what a maker note keeps outside of itself. No-op for a damaged block.
  void EraseUnused();

  /// Makes the block shorter until it has `most` bytes: values and tables move into free bytes, the
  /// maker note stays where it is. If that is not enough, the thumbnail goes. The block can stay
  /// longer. No-op for a damaged block.
  void ShrinkTo(size_t most);

  /// Sets the orientation to 1 if the block states another one, also in a damaged block. False if
  /// the block is damaged and its orientation cannot be found: an unknown one could be left.
  bool SetUpright();

 private:
  using Entry = detail::IfdEntry;
  struct Directory : detail::Ifd {
    ExifDirectoryId id = ExifDirectoryId::main;
    /// Place of the offset that leads here.
    size_t pointerAt = 0;

    bool HasNext() const;
    /// Count, entries and, where it counts, the link to the next directory.
    detail::ByteRange Whole() const;
  };

  void Walk();
  void WalkDirectory(ExifDirectoryId id, size_t at, size_t pointerAt);
  void FollowPointer(ExifDirectoryId from, uint16_t tag, ExifDirectoryId to);
  bool HasValuesInTables() const;
  void RequireWhole() const;
  const Directory* FindDirectory(ExifDirectoryId id) const;
  const Entry* Find(ExifDirectoryId directory, uint16_t tag) const;
  TagValue ValueOf(const Entry& entry) const;

  std::vector<detail::ByteRange> ThumbnailRanges() const;
  /// What stands in a range: header, tables, values, thumbnail.
  std::vector<detail::ByteRange> UsersOf(const detail::ByteRange& range) const;
  /// Overwrites the unused parts of a range with zeros.
  void Free(const detail::ByteRange& range);
  void FreeDirectory(const Directory& directory);
  void DropFreeEnd();
  bool MoveLastToGap();

  size_t Append(std::span<const uint8_t> bytes);
  void PutWordAt(size_t at, uint16_t value);
  void PutLongAt(size_t at, uint32_t value);
  void EnsureDirectory(ExifDirectoryId id);
  /// The bytes of all entries.
  std::vector<uint8_t> EntriesOf(ExifDirectoryId id) const;
  void AddEntry(ExifDirectoryId id, uint16_t tag);
  void WriteTable(size_t at, const Directory& directory, const std::vector<uint8_t>& entries);
  void MoveTable(ExifDirectoryId id, const std::vector<uint8_t>& entries);
  void RemoveEntry(ExifDirectoryId id, const Entry& entry);
  void WriteValue(const Entry& entry, const TagValue& value);
  bool ReplaceThumbnail(std::span<const uint8_t> jpeg);
  void AppendThumbnail(std::span<const uint8_t> jpeg);

  std::vector<uint8_t> bytes_;
  std::vector<Directory> directories_;
  /// Zeros that nothing uses.
  std::vector<detail::ByteRange> free_;
  bool isBigEndian_ = false, isDamaged_ = false;
};

}  // namespace rasterkit
