#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TImageData;

/// Groups of directories and of their tags.
enum TTagType : uint8_t { tagExif, tagGPS, tagSpec, tagThumb };

/// A set of tag groups.
class TTagTypes {
 public:
  constexpr TTagTypes() = default;
  constexpr TTagTypes(std::initializer_list<TTagType> types) {
    for (const TTagType type : types) bits_ |= 1u << type;
  }
  constexpr bool Contains(TTagType type) const { return (bits_ >> type & 1u) != 0; }
  friend constexpr bool operator==(const TTagTypes&, const TTagTypes&) = default;

 private:
  unsigned bits_ = 0;
};

inline constexpr TTagTypes kAllTagTypes = {tagExif, tagGPS, tagSpec, tagThumb};

/// Turns a tag's formatted value (UTF-8) into its display text (UTF-8); may store values in
/// `AImgData`.
using TCallFunc = std::string (*)(const std::string& instr, uint16_t TagID, TImageData& AImgData);

/// One decoded directory entry.
struct TTagEntry {
  TTagType TagType = tagExif;
  uint16_t Tag = 0;
  /// TIFF field type, 1 to 12.
  uint16_t FmtType = 0;
  /// Display name; the built-in tables give none.
  std::string Name;
  /// Value-decoding list (see DecodeField).
  std::string Code;
  /// Display text of the value in UTF-8. Bytes of the file that are not valid UTF-8 are read as
  /// Latin-1 (`Utf8OfBytes`), as in all texts of this room.
  std::string Inhalt;
  /// Bytes of the value, as far as the section holds them. Missing bytes are zero, but only as many
  /// as 128 numbers need.
  std::string RawBuff;
  /// 1-based position of the value in the EXIF buffer.
  int64_t RawPos = 0;
  /// Bytes that the entry claims for its value.
  int64_t RawSize = 0;
  /// Template for the display text of numbers, with one "%s" or one number directive.
  std::string FormatS;
  TCallFunc CallBack = nullptr;
};

/// Decoded EXIF section of a photo. The built-in tag tables fill only `Rotation`, the place of the
/// thumbnail and the entries; the other fields belong to tags that these tables do not admit.
class RASTERKIT_EXPORT TExifData {
 public:
  explicit TExifData(TTagTypes WantedTagTypes) : TagTypes(WantedTagTypes) {}

  std::string ExifVersion;
  std::string CameraMake;
  std::string CameraModel;
  std::string DateTime;
  std::string DateTime_org;
  int32_t Width = 0;
  int32_t Height = 0;
  /// Degrees by which the photo must be turned, counter-clockwise, to stand upright: 0, 90, 180 or
  /// 270.
  int32_t Rotation = 0;
  int32_t FlashUsed = 0;
  bool TiffFmt = false;
  std::string Comments;
  int64_t CommentPosn = 0;
  int64_t CommentSize = 0;
  /// Groups whose entries are kept.
  TTagTypes TagTypes;
  /// Entries in rows 0 to FTagCount - 1; the rows after them are unused.
  std::vector<TTagEntry> FTagArray;
  int32_t FTagCount = 0;
  int32_t MaxTag = 0;
  /// Offset of the thumbnail's directory from the TIFF header.
  int32_t ThumbStart = 0;
  /// Bytes from there to the end of the section, plus 11.
  int32_t ThumbLength = 0;
  int32_t ThumbType = 0;

  /// Keeps a copy of the entry if its group is kept. Returns the row of the last kept entry; -1 if
  /// there is none.
  int AddTagToArray(const TTagEntry& nextTag);
  /// Tells whether the thumbnail's directory lies after the TIFF header and is large enough for a
  /// picture.
  bool HasThumbnail() const;
};

}  // namespace rasterkit
