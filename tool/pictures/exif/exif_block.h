#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/jpegexif/image_data.h>

namespace rasterkit::tool {

/// One entry of a directory.
struct ExifEntry {
  uint16_t tag = 0;
  uint16_t type = 0;
  int64_t valuePos = 0;
  /// What the entry claims; the section may hold less.
  int64_t byteCount = 0;
};

struct ExifDirectory {
  /// "main", "exif", "gps", "interop", "thumbnail".
  const char* name = "";
  int64_t start = 0;
  int64_t linkPos = 0;
  std::vector<ExifEntry> entries;

  const ExifEntry* Find(uint16_t tag) const;
};

/// All directories of an EXIF section, every tag and every group, where the library's own walk
/// keeps to the few that it needs. Positions count from 1 in the section's bytes, as in TImageData.
class ExifBlock {
 public:
  /// `section` are the bytes of an APP1 section from its length on. A section without directories
  /// gives none; damage ends a directory early and is told by IsDamaged.
  explicit ExifBlock(std::string section);

  const std::string& Section() const { return section_; }
  /// "II", "MM"; empty when the section names none.
  std::string ByteOrder() const;
  bool IsDamaged() const { return isDamaged_; }

  const std::vector<ExifDirectory>& Directories() const { return directories_; }
  /// The first of that name; null when there is none.
  const ExifDirectory* Find(const char* name) const;

  /// The value's bytes as far as the section holds them.
  std::string Raw(const ExifEntry& entry) const;
  /// The first whole number of the entry; 0 for types that are none.
  uint32_t Number(const ExifEntry& entry) const;
  /// The same, also of rationals.
  double Value(const ExifEntry& entry) const;
  /// The values as text: of numbers 16 at most, of bytes without a meaning their count.
  std::string Text(const ExifEntry& entry) const;

  /// Numbers in the section's byte order.
  const TEndInd& Order() const { return reader_; }

 private:
  void Walk(const char* name, int64_t start);
  void FollowPointers();
  void FollowLinks();

  std::string section_;
  TImageData reader_;
  std::vector<ExifDirectory> directories_;
  bool isDamaged_ = false;
};

/// Where the section's TIFF header lies, from which all its offsets count.
inline constexpr int64_t kExifBase = 9;
inline constexpr const char* kThumbnailDirectory = "thumbnail";

}  // namespace rasterkit::tool
