#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <rasterkit/metadata/exif_block.h>

#include "tests/support/exif_builder.h"

/// EXIF blocks for tests, made byte by byte.
namespace rasterkit::test {

inline std::vector<uint8_t> BytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

inline constexpr ExifDirectoryId kAllDirectories[] = {
    ExifDirectoryId::main, ExifDirectoryId::exif, ExifDirectoryId::gps, ExifDirectoryId::interop,
    ExifDirectoryId::thumbnail};

/// All values of a block but pointers to directories.
inline std::map<std::pair<ExifDirectoryId, uint16_t>, TagValue> AllTags(const ExifBlock& block) {
  std::map<std::pair<ExifDirectoryId, uint16_t>, TagValue> tags;
  for (const ExifDirectoryId directory : kAllDirectories) {
    for (const TagValue& value : block.All(directory)) {
      if (value.tag == 34665 || value.tag == 34853 || value.tag == 40965) continue;
      tags.emplace(std::pair(directory, value.tag), value);
    }
  }
  return tags;
}

inline std::string JpegThumbnail(size_t bytes, char fill) {
  return "\xFF\xD8" + std::string(bytes - 4, fill) + "\xFF\xD9";
}

/// A block as cameras write it: main directory with shared resolution, EXIF directory with a maker
/// note, GPS, interoperability and a thumbnail of 100 bytes.
struct CameraBlock {
  std::string bytes;
  size_t makerNoteAt = 0;
  std::string makerNote = "MAKER NOTE with bytes of its own";
  std::string thumbnail = JpegThumbnail(100, '\x55');
};

inline CameraBlock MakeCameraBlock(ByteOrder order) {
  const TiffWriter writer(order);
  CameraBlock block;
  const auto build = [&](uint32_t exifAt, uint32_t gpsAt, uint32_t interopAt, uint32_t thumbnailAt,
                         uint32_t pictureAt, std::vector<uint32_t>& places) {
    std::string bytes = writer.Header();
    bytes += writer.Directory(
        8,
        {writer.Ascii(270, "A description"), writer.Ascii(271, "Cam"), writer.Short(274, 6),
         writer.Rationals(282, {{300, 1}}), writer.Rationals(283, {{300, 1}}), writer.Short(296, 2),
         writer.Ascii(306, "2021:02:03 04:05:06"), writer.LongEntry(34665, exifAt),
         writer.LongEntry(34853, gpsAt)},
        thumbnailAt);
    places = {static_cast<uint32_t>(bytes.size())};
    const std::string exif = writer.Directory(
        exifAt,
        {writer.Rationals(33434, {{1, 250}}),
         writer.Ascii(36867, "2020:01:02 03:04:05"),
         {37396, 3, 4, writer.Word(100) + writer.Word(50) + writer.Word(20) + writer.Word(10)},
         writer.Bytes(37500, block.makerNote, 7),
         writer.LongEntry(40962, 4000),
         writer.LongEntry(40963, 3000),
         writer.LongEntry(40965, interopAt)});
    bytes += exif;
    places.push_back(static_cast<uint32_t>(bytes.size()));
    bytes += writer.Directory(
        gpsAt, {writer.Ascii(1, "N"), writer.Rationals(2, {{48, 1}, {8, 1}, {3020, 100}}),
                writer.Ascii(3, "E"), writer.Rationals(4, {{11, 1}, {34, 1}, {0, 1}})});
    places.push_back(static_cast<uint32_t>(bytes.size()));
    bytes += writer.Directory(interopAt, {writer.Ascii(1, "R98"), writer.LongEntry(4097, 4000),
                                          writer.LongEntry(4098, 3000)});
    places.push_back(static_cast<uint32_t>(bytes.size()));
    bytes += writer.Directory(
        thumbnailAt, {writer.Short(259, 6), writer.Short(274, 6), writer.Rationals(282, {{72, 1}}),
                      writer.LongEntry(513, pictureAt),
                      writer.LongEntry(514, static_cast<uint32_t>(block.thumbnail.size()))});
    places.push_back(static_cast<uint32_t>(bytes.size()));
    return bytes + block.thumbnail;
  };
  std::vector<uint32_t> places, ignored;
  build(0, 0, 0, 0, 0, places);
  block.bytes = build(places[0], places[1], places[2], places[3], places[4], ignored);
  block.makerNoteAt = block.bytes.find(block.makerNote);
  return block;
}

}  // namespace rasterkit::test
