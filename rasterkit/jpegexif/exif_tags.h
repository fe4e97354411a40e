#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/jpegexif/exif_data.h>

/// Tags that the EXIF reader knows. A directory entry whose tag has no row is skipped.
namespace rasterkit {

enum ExifTag : uint16_t {
  kTagOrientation = 274,
  kTagCompression = 259,
  kTagSubDirectories = 330,
  kTagExifDirectory = 34665,
  kTagGpsDirectory = 34853,
  kTagInteropDirectory = 40965,
};

/// Row of a tag table.
struct TTagRow {
  uint16_t Tag = 0;
  const char* Code = "";
  TCallFunc CallBack = nullptr;
};

namespace detail {

/// Stores three rationals (degrees, minutes, seconds) in the GPS data and returns them as text.
std::string CoordinateText(const std::string& instr, uint16_t tag, TImageData& image);
/// Stores three rationals (hours, minutes, seconds, each truncated) in the GPS data and returns
/// HH:MM:SS.
std::string TimeText(const std::string& instr, uint16_t tag, TImageData& image);

constexpr std::array<TTagRow, 31> MakeGpsTable() {
  std::array<TTagRow, 31> table;
  for (size_t tag = 0; tag < table.size(); ++tag) table[tag].Tag = static_cast<uint16_t>(tag);
  for (const size_t tag : {2, 4, 20, 22}) table[tag].CallBack = CoordinateText;
  table[7].CallBack = TimeText;
  return table;
}

}  // namespace detail

/// Main, EXIF and thumbnail directories. The code list of the orientation pairs no value with a
/// text, so its display text is always empty. Row 0 is empty and admits nothing, not even a tag 0.
inline constexpr std::array<TTagRow, 3> kExifTable = {TTagRow{},
                                                      TTagRow{kTagOrientation, "1,3,6,8", nullptr},
                                                      TTagRow{kTagGpsDirectory, "", nullptr}};

/// GPS directories: row n holds tag n.
inline constexpr std::array<TTagRow, 31> kGpsTable = detail::MakeGpsTable();

namespace detail {

/// Row of a tag in the table of its directory's group; null if the tag is not admitted there.
const TTagRow* FindTagRow(TTagType group, uint16_t tag);

}  // namespace detail

/// Bytes per value of a TIFF field type. Floating-point and unknown types have 0, which makes their
/// entries empty.
constexpr int BytesPerType(uint16_t fmtType) {
  constexpr std::array<int, 11> kBytes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8};
  return fmtType < kBytes.size() ? kBytes[fmtType] : 0;
}

}  // namespace rasterkit
