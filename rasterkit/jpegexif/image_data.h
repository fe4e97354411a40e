#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/jpegexif/byte_order.h>
#include <rasterkit/jpegexif/exif_data.h>
#include <rasterkit/jpegexif/exif_tags.h>
#include <rasterkit/jpegexif/gps_data.h>
#include <rasterkit/jpegexif/jpeg_sections.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// First bytes of an EXIF section after its length.
inline constexpr std::string_view ValidHeader("Exif\0", 5);

/// Type, place and size of a directory entry's value.
struct TTagInfo {
  /// Bytes of the value: its count times the bytes of its type.
  int64_t ByteCount = 0;
  int64_t ValuePos = 0;
  uint16_t FmtType = 0;
  uint16_t Tag = 0;
};

/// The metadata sections of one JPEG file, and the EXIF section among them decoded.
///
/// Layout of an EXIF section ("Data" of its TSection, positions from 1):
///
///     1    length, big-endian, counts itself
///     3    "Exif" 0 0
///     9    "II" or "MM", 42            <- all offsets of the directories count from here
///     13   offset of the main directory: count, entries of 12 bytes, offset of the next directory
///                                                       tag, type, count (2, 2, 4), value or its
///                                                       offset (4)
///
/// Use a new object for each file, and from one thread at a time. An object keeps pointers into
/// itself and therefore cannot be copied or moved.
class RASTERKIT_EXPORT TImageData : public TEndInd {
 public:
  TImageData() = default;
  TImageData(const TImageData&) = delete;
  TImageData& operator=(const TImageData&) = delete;

  /// Number of sections read, 0 to 20.
  int32_t SectionCnt = 0;
  /// Sections in file order, counted from 1 (entry 0 is not used).
  std::array<TSection, 22> Sections;
  /// The last APP0 section.
  PSection HeaderSegment = nullptr;
  /// The first APP1 section if it is among the first five sections, regardless of its content (also
  /// XMP).
  PSection ExifSegment = nullptr;
  /// The first APP13 section.
  PSection IPTCSegment = nullptr;
  /// The last COM section.
  PSection CommentSegment = nullptr;
  /// APP2, APP12 and APP14 sections in file order, counted from 1 (entry 0 is not used); a sixth is
  /// not recorded.
  std::array<PSection, 6> OtherSegments = {};
  int32_t OthersCount = 0;
  /// Groups whose entries are kept.
  TTagTypes FTagTypes = kAllTagTypes;
  /// Copy of the EXIF section's bytes.
  std::string ExifBuff;
  /// Directories visited so far, each as "[offset base:directory start]".
  std::string DirStack;
  /// Null if no APP1 section was found.
  std::unique_ptr<TExifData> ExifData;
  /// Null if no GPS directory was found.
  std::unique_ptr<TGPSData> GPSData;
  /// Whether display callbacks and code lists are applied.
  bool ExifDecode = true;
  /// Last decoding error; empty if there was none.
  std::string ErrStr;
  /// Set by a display callback to keep the plain formatted value.
  bool UseRaw = false;

  /// Reads the sections of a JPEG file from the stream's position and decodes the EXIF section.
  /// Returns true if an EXIF, IPTC, comment, APP2, APP12 or APP14 section was found. The stream's
  /// position is after the sections then. Throws ConversionError if a GPS position or time does not
  /// consist of three rationals. A time of day that does not exist is no error: `TimeStamp` keeps
  /// its value.
  bool ReadJpegSections(TStream& stream);
  /// Calls ResetInfos, then reads a file as ReadJpegSections does. Throws FileError if it cannot be
  /// opened or read.
  bool ReadJpegFile(const std::string& FileName);
  /// Discards what was found in an earlier file, except the list of other segments, which keeps
  /// growing.
  void ResetInfos();
  /// Discards the EXIF, IPTC, comment and other segments; header, sections and decoded values stay.
  void ClearSections();
  /// Tells whether there is an EXIF, an IPTC or a comment segment.
  bool HasMetaData() const;
  /// All comments of the photo in UTF-8, separated by "\r": the comment section with its length
  /// bytes, the EXIF comment, the printable bytes of the IPTC section, and the other segments with
  /// theirs. Bytes that are not valid UTF-8 are read as Latin-1.
  std::string GetComment() const;

  /// Writes the start marker and the kept sections in a fixed order: EXIF (if there is none, the
  /// APP0 section, or else a JFIF header of 300 dots per inch), IPTC, comment, others. So a photo
  /// with EXIF data loses its APP0 section. Returns the number of bytes written after the start
  /// marker. Errors of the stream pass to the caller.
  int32_t SaveExif(TStream& stream) const;
  /// Writes a picture with the metadata of this object instead of those of its encoder. The file is
  /// written atomically. Throws FormatError for an empty picture, FileError if the file cannot be
  /// written.
  void WriteExifJpeg(TJPEGImage& image, const std::string& FileName) const;
  /// Copies a JPEG file with the metadata of this object instead of its own. `jpegStream` holds the
  /// file from its beginning on (which is not checked) and must be seekable. With `OhneH` (without
  /// header) the target gets only what follows start marker and metadata; the caller has written
  /// its own.
  void WriteImageToStream(TStream& jpegStream, TStream& target, bool OhneH) const;

  /// Bytes of the JPEG thumbnail when the section was read; empty if there is none. Finds only
  /// thumbnails that begin with a quantization or a Huffman table. Includes one byte after the end
  /// marker, or without an end marker everything to the end of the section.
  std::string ExtractThumbnailBuffer() const;
  /// The thumbnail as a picture. Null if there is none or its directory does not mark it as JPEG
  /// (`ThumbType` 6). The tag tables do not admit that tag, so a photo that was just read gives
  /// null. Throws FormatError if the bytes are damaged.
  std::unique_ptr<TJPEGImage> ExtractThumbnailJPeg() const;
  /// Cuts the EXIF section 14 bytes before the thumbnail's directory; the link to it stays in the
  /// main directory. `ExifBuff` and `ExifData` stay. No-op without a thumbnail.
  void RemoveThumbnail();

  /// Decodes `ExifSegment` from `ExifBuff`; needs both and `ExifData`.
  void ProcessExif();
  /// Decodes the directory at position `DirStart`, whose offsets count from `OffsetBase`.
  void ProcessExifDir(int64_t DirStart, int64_t OffsetBase, int64_t ExifLength, TTagType tagType);
  /// Reads entry `entryIndex` (from 0) of a directory; false if its value is empty.
  bool GetTagInfo(std::string_view buff, int64_t OffsetBase, int64_t entryIndex, int64_t DirStart,
                  TTagInfo& info) const;
  /// Completes an entry, whose `Tag`, `Code`, `FormatS` and `CallBack` are set, from its raw value.
  void FillTagEntry(std::string raw, uint16_t fmtType, int64_t valuePos, int64_t byteCount,
                    TTagEntry& entry);
  /// Low 32 bits of the integer that all bytes form. Short negative values are not sign-extended: a
  /// byte 0xFF is 255.
  int32_t GetInt(std::string_view bytes) const;
  /// First value in the bytes as a number; 0 for a zero denominator and for types that are not
  /// numeric.
  double GetNumber(std::string_view bytes, uint16_t fmtType) const;
  /// Formats the values in the bytes, at most 128: "1, 2", "1/2, 3/4".
  std::string FormatNumber(std::string_view bytes, uint16_t fmtType, const std::string& formatS,
                           const std::string& code) const;
  /// Stores a decoded entry in `ExifData`.
  void ProcTagExif(TTagEntry& entry);
  /// Stores a decoded entry in `GPSData`.
  void ProcTagGPS(TTagEntry& entry);
  void pushDirStack(int64_t dirStart, int64_t offsetBase);
  bool testDirStack(int64_t dirStart, int64_t offsetBase) const;

 private:
  /// Work limits for hostile sections. The directories of a valid section do not overlap, so both
  /// limits are far above what 65,535 bytes can hold. The number of directories needs no limit: GPS
  /// directories point to no other, and the main one holds at most 5,461 pointers.
  struct Effort {
    int entries = 64 * 1024;
    int64_t valueBytes = 4 * 1024 * 1024;
  };

  bool ReadSections(detail::SectionReader& reader);
  bool ReadSection(detail::SectionReader& reader);
  bool DispatchSection(TSection& section, bool& sawOthers);
  void KeepFirstApp1(TSection& section);

  void TakeThumbnailLink(int64_t linkPos, int64_t OffsetBase, int64_t ExifLength);
  bool ProcessEntry(const TTagInfo& info, int64_t OffsetBase, int64_t ExifLength, TTagType tagType);
  void DispatchEntry(TTagEntry& entry, int64_t OffsetBase, int64_t ExifLength);
  void FollowPointer(const TTagEntry& entry, int64_t OffsetBase, int64_t ExifLength);
  std::string RawValue(const TTagInfo& info) const;

  Effort effort_;
};

}  // namespace rasterkit
