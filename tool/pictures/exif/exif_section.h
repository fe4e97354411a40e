#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/jpegexif/image_data.h>

namespace rasterkit::tool {

/// An entry of a directory.
struct ExifEntry {
  uint16_t tag = 0;
  uint16_t type = 0;
  int64_t valuePos = 0;
  /// Number of bytes that the entry states; the section may hold fewer.
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

/// All directories of an EXIF section with all their tags; the library's TImageData reads only the
/// tags that it needs. Positions are counted from 1 in the bytes of the section, as in TImageData.
class ExifBlock {
 public:
  /// `section` starts at the length field of an APP1 section. A section without directories gives
  /// none. Damage ends a directory early and is reported by IsDamaged.
  explicit ExifBlock(std::string section);

  const std::string& Section() const { return section_; }
  /// "II" or "MM"; empty if the section states neither.
  std::string ByteOrder() const;
  bool IsDamaged() const { return isDamaged_; }

  const std::vector<ExifDirectory>& Directories() const { return directories_; }
  /// The first entry of that name; null if there is none.
  const ExifDirectory* Find(const char* name) const;

  /// Bytes of the value that the section holds.
  std::string Raw(const ExifEntry& entry) const;
  /// The first integer of the entry; 0 for other types.
  uint32_t Number(const ExifEntry& entry) const;
  /// The first number of the entry, including rationals.
  double Value(const ExifEntry& entry) const;
  /// The values as text: at most 16 numbers; for bytes without a known meaning only their count.
  std::string Text(const ExifEntry& entry) const;

  /// Reads numbers in the byte order of the section.
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

/// Position of the TIFF header, which all offsets refer to.
inline constexpr int64_t kExifBase = 9;
inline constexpr const char* kThumbnailDirectory = "thumbnail";

}  // namespace rasterkit::tool
