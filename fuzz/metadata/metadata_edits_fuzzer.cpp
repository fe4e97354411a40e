// Makes edits on any block: what was set must be read, what was stripped must be gone, and a whole
// EXIF block must stay whole.

#include <cmath>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/metadata/edit/edit_metadata.h>
#include <rasterkit/metadata/edit/exif_value_text.h>
#include <rasterkit/metadata/edit/iptc_records.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/facts_of_metadata.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

constexpr size_t kMostBytes = 1 << 16;
constexpr size_t kHeadBytes = 4;

/// The first byte says what the rest is, the next three which edits are made.
Metadata MetadataOf(uint8_t kind, std::span<const uint8_t> block) {
  constexpr uint8_t kKinds = 6;
  Metadata metadata;
  const std::vector<uint8_t> bytes(block.begin(), block.end());
  switch (kind % kKinds) {
    case 0:
      metadata.exif = bytes;
      break;
    case 1:
      metadata.xmp.assign(block.begin(), block.end());
      break;
    case 2:
      metadata.iptc = bytes;
      break;
    case 3:
      metadata.photoshop = bytes;
      break;
    case 4:
      metadata.jpegSegments.push_back({0xE6, bytes});
      break;
    default:
      metadata.exif = bytes;
      metadata.extendedXmp.assign(block.begin(), block.end());
      metadata.pngChunks.push_back({1, bytes, false});
  }
  return metadata;
}

constexpr const char* kTags[] = {"Artist",       "Copyright",   "ExposureTime", "LensModel",
                                 "UserComment",  "XPTitle",     "GPSMapDatum",  "ISO",
                                 "IPTC:By-line", "dc:creator",  "xmp:Rating",   "dc:description",
                                 "OffsetTime",   "GPSAltitude", "LensInfo",     "Keywords"};
constexpr const char* kValues[] = {
    "A. Person", "1/125", "5",         "\xC3\xA4", "+02:00", "24 70 28/10 4",
    "",          "<&>",   "999999999", "-1",       "0",      "x\x01y"};
constexpr const char* kGroups[] = {"EXIF",      "GPS",       "XMP",    "IPTC",       "Comment",
                                   "MakerNote", "Thumbnail", "Artist", "dc:creator", "Keywords"};

MetadataEdit EditOf(std::span<const uint8_t> numbers) {
  MetadataEdit edit;
  const uint8_t flags = numbers[0];
  edit.stripGps = (flags & 1) != 0;
  edit.stripMakerNote = (flags & 2) != 0;
  edit.stripThumbnail = (flags & 4) != 0;
  if ((flags & 8) != 0) edit.gps = GpsPosition{48.5 - numbers[1], 11.25, 520.0};
  if ((flags & 16) != 0) edit.date = "2019-07-04T13:05:09.5+02:00";
  edit.stripAll = (flags & 96) == 96;
  if ((flags & 128) != 0) edit.remove = {kGroups[numbers[2] % std::size(kGroups)]};
  edit.set = {{kTags[numbers[1] % std::size(kTags)], kValues[numbers[2] % std::size(kValues)]}};
  return edit;
}

void RequireNoPosition(const Metadata& metadata) {
  Require(!FactsOf(metadata).gps);
  if (!metadata.exif.empty()) {
    const ExifBlock block(metadata.exif);
    Require(!block.IsDamaged());
    Require(block.All(ExifDirectoryId::gps).empty());
  }
  for (const std::string* text : {&metadata.xmp, &metadata.extendedXmp}) {
    if (text->empty()) continue;
    const XmpPacket packet(*text);
    Require(!packet.IsDamaged());
    Require(!packet.Has("http://ns.adobe.com/exif/1.0/", "GPSLatitude"));
  }
}

void RequireThatItHolds(const Metadata& metadata, const MetadataEdit& edit) {
  const bool statesGps = edit.gps || edit.set[0].tag.starts_with("GPS");
  if (edit.stripGps && !statesGps) RequireNoPosition(metadata);
  if (edit.gps) {
    const auto gps = FactsOf(metadata).gps;
    Require(gps && std::abs(gps->latitude - edit.gps->latitude) < 1e-6);
  }
  if (edit.date) Require(FactsOf(metadata).date == "2019-07-04T13:05:09");
  if (metadata.exif.empty()) return;
  const ExifBlock block(metadata.exif);
  if (edit.stripMakerNote) Require(!block.Has(ExifDirectoryId::exif, 37500));
  if (edit.set[0].tag == "Artist") {
    const auto artist = block.Get(ExifDirectoryId::main, 315);
    Require(artist && artist->bytes.size() == edit.set[0].value.size() + 1);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < kHeadBytes || size > kMostBytes) return 0;
  const std::span<const uint8_t> bytes(data, size);
  Metadata metadata = MetadataOf(bytes[0], bytes.subspan(kHeadBytes));
  const bool wasWhole = metadata.exif.empty() || !ExifBlock(metadata.exif).IsDamaged();
  const MetadataEdit edit = EditOf(bytes.subspan(1, 3));
  EditedPicture picture;
  picture.format = bytes[1] % 2 == 0 ? EditedPicture::Format::jpeg : EditedPicture::Format::tiff;
  picture.width = picture.height = 40;
  Changes changes;
  try {
    EditMetadata(metadata, edit, picture, changes);
  } catch (const RangeError&) {
    return 0;
  } catch (const FormatError&) {
    return 0;
  }
  if (wasWhole && !metadata.exif.empty()) Require(!ExifBlock(metadata.exif).IsDamaged());
  RequireThatItHolds(metadata, edit);
  return 0;
}
