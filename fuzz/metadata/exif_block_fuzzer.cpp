// Reads any bytes as an EXIF block, then changes it: the other values must stay.

#include <cstdint>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_tags_of_tiff.h>
#include <rasterkit/metadata/facts_of_metadata.h>
#include <rasterkit/metadata/follow_pixels.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

constexpr size_t kMostBytes = 1 << 16;
constexpr uint16_t kDescription = 270, kGpsDate = 29;

/// The first value of each tag, as readers take it, without pointers.
std::map<std::pair<ExifDirectoryId, uint16_t>, TagValue> Tags(const ExifBlock& block) {
  std::map<std::pair<ExifDirectoryId, uint16_t>, TagValue> tags;
  for (const ExifDirectoryId directory :
       {ExifDirectoryId::main, ExifDirectoryId::exif, ExifDirectoryId::gps,
        ExifDirectoryId::interop, ExifDirectoryId::thumbnail}) {
    for (const TagValue& value : block.All(directory)) {
      const bool isPointer = value.tag == 34665 || value.tag == 34853 || value.tag == 40965;
      if (!isPointer) tags.emplace(std::pair(directory, value.tag), value);
    }
  }
  return tags;
}

void RequireChangesKeepOthers(ExifBlock block) {
  auto expected = Tags(block);
  try {
    block.SetText(ExifDirectoryId::main, kDescription, "a description that is new");
    block.SetText(ExifDirectoryId::gps, kGpsDate, "2024:01:02");
  } catch (const RangeError&) {
    // The directory is full.
    return;
  }
  Require(!block.IsDamaged());
  auto tags = Tags(block);
  for (const auto& key : {std::pair(ExifDirectoryId::main, kDescription),
                          std::pair(ExifDirectoryId::gps, kGpsDate)}) {
    tags.erase(key);
    expected.erase(key);
  }
  Require(tags == expected);
  block.RemoveThumbnail();
  Require(!block.IsDamaged() && !block.HasThumbnail());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > kMostBytes) return 0;
  const std::vector<uint8_t> bytes(data, data + size);
  const ExifBlock block(bytes);
  FactsOf(block);
  TagsOfExif(bytes);
  if (!block.IsDamaged()) RequireChangesKeepOthers(block);
  Metadata metadata;
  metadata.exif = bytes;
  PixelChange change;
  change.oldWidth = change.height = 40;
  change.oldHeight = change.width = 30;
  change.toNew = {0, -1, 30, 1, 0, 0};
  change.pixelsChanged = change.placesChanged = change.becameGray = true;
  change.resolution = {300, 200};
  Changes changes;
  FollowPixels(metadata, change, changes);
  if (!metadata.exif.empty()) {
    const ExifBlock followed(metadata.exif);
    Require(followed.Number(ExifDirectoryId::main, 274).value_or(1) == 1);
    Require(block.IsDamaged() || !followed.IsDamaged());
  }
  return 0;
}
