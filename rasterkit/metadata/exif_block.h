#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/metadata/tag_value.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Directories of an EXIF block.
enum class ExifDirectoryId { main, exif, gps, interop, thumbnail };

/// An EXIF block as a value, read and changed in place.
///
/// A change keeps the place of everything that stays: a value of the same size or smaller is
/// overwritten where it stands, what grows goes to the end of the block, removed bytes become
/// zeros. The maker note keeps its bytes and its offset. Damage ends a directory early; damaged
/// blocks can be read, and changed by `SetUpright` alone.
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

  /// Makes the directory and the pointer to it if needed.
  void Set(ExifDirectoryId directory, const TagValue& value);
  void SetWords(ExifDirectoryId directory, uint16_t tag, std::span<const uint16_t> values);
  void SetLong(ExifDirectoryId directory, uint16_t tag, uint32_t value);
  void SetRational(ExifDirectoryId directory, uint16_t tag, double value);
  void SetText(ExifDirectoryId directory, uint16_t tag, const std::string& text);
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

  /// Sets the orientation to 1 if the block states another one, also in a damaged block. False if
  /// the block is damaged and its orientation cannot be found: an unknown one could be left.
  bool SetUpright();

 private:
  struct Entry {
    uint16_t tag = 0, type = 0;
    uint64_t count = 0;
    /// Places in the block: the entry itself (12 bytes) and its values.
    size_t entryAt = 0, valuesAt = 0, valueBytes = 0;
  };
  struct Directory {
    ExifDirectoryId id = ExifDirectoryId::main;
    size_t at = 0;
    /// Place of the offset that leads here.
    size_t linkAt = 0;
    std::vector<Entry> entries;
  };

  void Walk();
  const Entry* Find(ExifDirectoryId directory, uint16_t tag) const;

  std::vector<uint8_t> bytes_;
  std::vector<Directory> directories_;
  bool isBigEndian_ = false, isDamaged_ = false;
};

}  // namespace rasterkit
