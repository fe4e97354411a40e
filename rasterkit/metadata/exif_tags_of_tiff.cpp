#include <algorithm>
#include <iterator>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/exif_tags_of_tiff.h>
#include <rasterkit/metadata/ifd.h>

namespace rasterkit {
namespace {

/// A run of tags, both ends included.
struct TagRange {
  uint16_t first, last;
};

constexpr TagRange kStructure[] = {
    {254, 259},      // kind, sides, bits, compression
    {262, 266},      // color model, threshold, cells, fill order
    {273, 273},      // strips
    {277, 281},      // samples, rows of a strip, byte counts, smallest and largest value
    {284, 284},      // planes
    {288, 293},      // free space, gray curve, fax options
    {301, 301},      // transfer function: it depends on the bits
    {317, 317},      // predictor
    {320, 330},      // palette, halftones, tiles, fax damage, sub-directories
    {332, 347},      // inks, extra samples, sample format, JPEG tables
    {400, 405},      // profiles of fax files
    {433, 435},      // coding of bilevel profiles
    {512, 521},      // old-style JPEG
    {529, 532},      // YCbCr
    {559, 559},      // strip row counts
    {700, 700},      // XMP
    {32995, 32998},  // old names of alpha, data type, depth, tile depth
    {33550, 33550},  // GeoTIFF scale
    {33723, 33723},  // IPTC
    {33920, 33922},  // tie points
    {34264, 34264},  // GeoTIFF transformation
    {34377, 34377},  // Photoshop
    {34665, 34665},  // EXIF directory
    {34675, 34675},  // ICC
    {34735, 34737},  // GeoTIFF keys
    {34853, 34853},  // GPS directory
    {40965, 40965},  // interoperability directory
    {42113, 42113},  // GDAL's "no data"
    {50674, 50675},  // LERC, alpha of some writers
    {50844, 50844},  // RPC
};

constexpr TagRange kExifTags[] = {
    {269, 272},      // names, description, make, model
    {274, 274},      // orientation
    {282, 283},      // resolution
    {285, 287},      // page name, position on the page
    {296, 296},      // resolution unit
    {305, 306},      // software, date
    {315, 316},      // artist, host computer
    {318, 319},      // white point, primaries
    {18246, 18246},  // rating
    {18249, 18249},  // rating in percent
    {33432, 33432},  // copyright
    {33434, 33437},  // exposure time, aperture
    {34850, 34852},  // exposure program, spectral sensitivity
    {34855, 34869},  // sensitivity
    {36864, 37521},  // photograph: dates, exposure, maker note, comment
    {37888, 37893},  // surroundings
    {40091, 40095},  // texts of Windows
    {40960, 40964},  // color space, sides
    {41483, 41496},  // focal plane, subject
    {41728, 41730},  // source, scene
    {41985, 42082},  // rendering, owner, lens, composite pictures
    {42240, 42240},  // gamma
    {50341, 50341},  // printing
};

template <size_t kSize>
bool IsIn(const TagRange (&ranges)[kSize], uint16_t tag) {
  return std::any_of(std::begin(ranges), std::end(ranges), [tag](const TagRange& range) {
    return tag >= range.first && tag <= range.last;
  });
}

uint64_t Number64(std::span<const uint8_t> bytes) {
  uint64_t number = 0;
  for (size_t i = 0; i < 8; ++i) number |= uint64_t{bytes[i]} << 8 * i;
  return number;
}

/// Makes the types of large files 32-bit ones; false if a value does not fit.
bool Narrow(TagValue& value) {
  constexpr uint16_t kLong = 4, kSignedLong = 9, kLong8 = 16, kSignedLong8 = 17, kIfd8 = 18;
  if (value.type != kLong8 && value.type != kSignedLong8 && value.type != kIfd8) return true;
  std::vector<uint8_t> narrow;
  for (size_t at = 0; at + 8 <= value.bytes.size(); at += 8) {
    const uint64_t number = Number64(std::span(value.bytes).subspan(at, 8));
    const bool isSigned = value.type == kSignedLong8;
    const auto asSigned = static_cast<int64_t>(number);
    if (isSigned ? asSigned != static_cast<int32_t>(asSigned) : number > UINT32_MAX) return false;
    for (int i = 0; i < 4; ++i) narrow.push_back(static_cast<uint8_t>(number >> 8 * i));
  }
  value.type = value.type == kSignedLong8 ? kSignedLong : kLong;
  value.bytes = std::move(narrow);
  return true;
}

bool IsPointer(uint16_t tag) {
  return tag == exif::kExifPointer || tag == exif::kGpsPointer || tag == exif::kInteropPointer;
}

/// Tags in an EXIF block's form: each once, with as many bytes as type and count say.
std::vector<TagValue> Usable(std::span<const TagValue> tags) {
  std::vector<TagValue> usable;
  std::vector<bool> isKnown(size_t{UINT16_MAX} + 1);
  for (const TagValue& tag : tags) {
    TagValue value = tag;
    const size_t unit = detail::BytesOfTagType(value.type);
    const bool isWhole =
        unit > 0 && value.count == value.bytes.size() / unit && value.bytes.size() % unit == 0;
    if (isKnown[value.tag] || !isWhole || IsPointer(value.tag) || !Narrow(value)) continue;
    isKnown[value.tag] = true;
    usable.push_back(std::move(value));
  }
  return usable;
}

}  // namespace

bool IsStructureOfTiff(uint16_t tag) {
  return IsIn(kStructure, tag);
}

bool IsTagOfExif(uint16_t tag) {
  return IsIn(kExifTags, tag);
}

std::vector<uint8_t> ExifOfTags(std::span<const TagValue> main, std::span<const TagValue> exif,
                                std::span<const TagValue> gps, std::span<const TagValue> interop,
                                bool isBigEndian) {
  std::vector<detail::NewIfd> directories(1);
  std::copy_if(main.begin(), main.end(), std::back_inserter(directories[0].tags),
               [](const TagValue& value) { return IsTagOfExif(value.tag); });
  directories[0].tags = Usable(directories[0].tags);
  const auto add = [&](size_t parent, uint16_t pointer, std::vector<TagValue> tags) {
    directories[parent].pointers.push_back({pointer, directories.size()});
    directories.push_back({std::move(tags), {}});
  };
  std::vector<TagValue> exifTags = Usable(exif), interopTags = Usable(interop);
  if (!exifTags.empty() || !interopTags.empty()) {
    add(0, exif::kExifPointer, std::move(exifTags));
    if (!interopTags.empty()) add(1, exif::kInteropPointer, std::move(interopTags));
  }
  if (std::vector<TagValue> gpsTags = Usable(gps); !gpsTags.empty()) {
    add(0, exif::kGpsPointer, std::move(gpsTags));
  }
  if (directories.size() == 1 && directories[0].tags.empty()) return {};
  return detail::BuildIfds(directories, isBigEndian);
}

TiffDirectories TagsOfExif(std::span<const uint8_t> exif) {
  const ExifBlock block({exif.begin(), exif.end()});
  TiffDirectories tags;
  tags.isBigEndian = block.IsBigEndian();
  for (TagValue& value : block.All(ExifDirectoryId::main)) {
    if (!IsStructureOfTiff(value.tag)) tags.main.push_back(std::move(value));
  }
  for (TagValue& value : block.All(ExifDirectoryId::exif)) {
    if (!IsPointer(value.tag)) tags.exif.push_back(std::move(value));
  }
  tags.gps = block.All(ExifDirectoryId::gps);
  tags.interop = block.All(ExifDirectoryId::interop);
  return tags;
}

}  // namespace rasterkit
