#include <algorithm>
#include <cstring>
#include <string_view>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_follow.h>
#include <rasterkit/metadata/follow_pixels.h>
#include <rasterkit/metadata/foreign_blocks.h>
#include <rasterkit/metadata/ifd.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/jpeg_segments.h>
#include <rasterkit/metadata/xmp_follow.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using std::string_view_literals::operator""sv;

void FollowExif(Metadata& metadata, const PixelChange& change, Changes& changes) {
  if (metadata.exif.empty()) return;
  ExifBlock exif(std::move(metadata.exif));
  metadata.exif.clear();
  bool isTrue = true;
  try {
    if (exif.IsDamaged()) {
      isTrue = detail::RepairDamagedExif(exif, change);
    } else {
      detail::FollowPixelsInExif(exif, change, changes);
    }
  } catch (const RangeError&) {
    // A directory has no room for a changed value.
    isTrue = false;
  }
  if (isTrue) {
    metadata.exif = exif.TakeBytes();
  } else {
    changes.Lose(LossKind::exif, "the EXIF block",
                 "it is damaged, so that it cannot follow the changed pixels");
  }
}

// --- Photoshop -----------------------------------------------------------------------------

/// The sides of a JPEG file; 0 x 0 if it has no frame header.
struct Sides {
  uint16_t width = 0, height = 0;
};

Sides SidesOfJpeg(std::span<const uint8_t> jpeg) {
  constexpr uint8_t kBaseline = 0xC0, kProgressive = 0xC2;
  constexpr size_t kHeightAt = 1, kWidthAt = 3, kLeast = 6;
  JpegSegmentWalker walker(jpeg);
  while (const auto segment = walker.Next()) {
    if (segment->marker < kBaseline || segment->marker > kProgressive) continue;
    if (segment->payload.size() < kLeast) break;
    const detail::OrderedBytes numbers(segment->payload, true);
    return {numbers.Word(kWidthAt), numbers.Word(kHeightAt)};
  }
  return {};
}

/// Resource 1036: a head of 28 bytes, then a JPEG file.
std::vector<uint8_t> ThumbnailResource(std::span<const uint8_t> jpeg, const Sides& sides) {
  constexpr size_t kHeadBytes = 28;
  constexpr uint32_t kJpeg = 1, kBits = 24, kPlanes = 1;
  const uint32_t rowBytes = (sides.width * kBits + 31) / 32 * 4;
  const uint32_t numbers[] = {kJpeg,
                              sides.width,
                              sides.height,
                              rowBytes,
                              rowBytes * sides.height,
                              static_cast<uint32_t>(jpeg.size())};
  std::vector<uint8_t> bytes(kHeadBytes);
  size_t at = 0;
  for (const uint32_t number : numbers) {
    detail::PutLong(bytes, at, number, true);
    at += 4;
  }
  detail::PutWord(bytes, at, kBits, true);
  detail::PutWord(bytes, at + 2, kPlanes, true);
  bytes.insert(bytes.end(), jpeg.begin(), jpeg.end());
  return bytes;
}

void FollowThumbnails(ImageResources& resources, const PixelChange& change, Changes& changes) {
  using namespace image_resource;
  const bool hadOne = resources.Find(kThumbnail) != nullptr;
  const bool hadOld = resources.Remove(kOldThumbnail);
  const Sides sides = SidesOfJpeg(change.thumbnail);
  if ((hadOne || hadOld) && sides.width > 0) {
    resources.Set(kThumbnail, ThumbnailResource(change.thumbnail, sides));
    return;
  }
  resources.Remove(kThumbnail);
  if (hadOne || hadOld) {
    changes.Lose(LossKind::thumbnail, "Photoshop's thumbnail",
                 "it shows the old picture and no new one was made");
  }
}

/// Paths, guides and slices are places in the picture.
void RemovePlaces(ImageResources& resources, Changes& changes) {
  constexpr uint16_t kWorkPath = 1025, kGuides = 1032, kSlices = 1050;
  constexpr uint16_t kFirstPath = 2000, kLastPath = 2999;
  std::vector<uint16_t> places;
  for (const ImageResource& one : resources.All()) {
    const bool isPath = one.id >= kFirstPath && one.id <= kLastPath;
    if (isPath || one.id == kWorkPath || one.id == kGuides || one.id == kSlices) {
      places.push_back(one.id);
    }
  }
  for (const uint16_t id : places) resources.Remove(id);
  const auto isPath = [](uint16_t id) { return id == kWorkPath || id >= kFirstPath; };
  if (std::any_of(places.begin(), places.end(), isPath)) {
    changes.Lose(LossKind::otherBlock, "Photoshop's paths", "they do not follow the pixels");
  } else if (!places.empty()) {
    changes.Note("Photoshop's guides and slices were removed, because they no longer fit");
  }
}

void FollowResources(Metadata& metadata, const PixelChange& change, Changes& changes) {
  if (metadata.photoshop.empty()) return;
  ImageResources resources(metadata.photoshop);
  FollowResolution(resources, change.resolution);
  FollowIptcDigest(resources, metadata.iptc);
  if (change.pixelsChanged) FollowThumbnails(resources, change, changes);
  if (change.placesChanged) RemovePlaces(resources, changes);
  metadata.photoshop = resources.Bytes();
}

// --- Other segments of JPEG files ----------------------------------------------------------

/// A segment that describes the old pixels.
struct StaleSegment {
  uint8_t marker;
  std::string_view start;
  LossKind kind;
  /// Empty for a mere copy of the picture.
  const char* what;
};

constexpr StaleSegment kStaleSegments[] = {
    {jpeg_marker::kApp0, "JFXX\0"sv, LossKind::thumbnail, ""},
    {jpeg_marker::kApp2, "MPF\0"sv, LossKind::hiddenPictures, ""},
    {jpeg_marker::kApp2, "urn:iso:std:iso:ts:21496:-1\0"sv, LossKind::hiddenPictures,
     "the gain map's properties"},
    {0xEB, "JP"sv, LossKind::otherBlock, "JUMBF boxes (signatures and further layers)"},
    {0xEB, "HDR_RI"sv, LossKind::hiddenPictures, "the HDR layer"},
};

bool StartsWith(const std::vector<uint8_t>& bytes, std::string_view text) {
  return bytes.size() >= text.size() && std::memcmp(bytes.data(), text.data(), text.size()) == 0;
}

void RemoveStaleSegments(Metadata& metadata, Changes& changes) {
  for (const StaleSegment& stale : kStaleSegments) {
    const auto removed = std::erase_if(metadata.jpegSegments, [&](const OtherBlock& segment) {
      return segment.kind == stale.marker && StartsWith(segment.bytes, stale.start);
    });
    if (removed > 0 && *stale.what != '\0') {
      changes.Lose(stale.kind, stale.what, "they hold for the old pixels only");
    }
  }
}

// --- TIFF ----------------------------------------------------------------------------------

constexpr std::string_view kItem = "<Item";

/// True for an item of GDAL's metadata that states the range of the pixels.
bool IsStatistic(std::string_view tag) {
  return tag.find("name=\"STATISTICS_") != std::string_view::npos ||
         tag.find("name='STATISTICS_") != std::string_view::npos;
}

/// The place after the item whose tag ends at `tagEnd`; npos if it has no end.
size_t EndOfItem(std::string_view xml, size_t tagEnd) {
  constexpr std::string_view kEnd = "</Item>";
  if (xml[tagEnd - 1] == '/') return tagEnd + 1;
  const size_t closing = xml.find(kEnd, tagEnd);
  return closing == std::string_view::npos ? closing : closing + kEnd.size();
}

/// GDAL's metadata without the items that are statistics of the old pixels. What follows an item
/// without an end stays.
std::string WithoutStatistics(std::string_view xml) {
  std::string kept;
  size_t at = 0;
  for (size_t item = xml.find(kItem); item != std::string_view::npos; item = xml.find(kItem, at)) {
    const size_t tagEnd = xml.find('>', item);
    if (tagEnd == std::string_view::npos) break;
    const size_t end = EndOfItem(xml, tagEnd);
    if (end == std::string_view::npos) break;
    const bool isStale = IsStatistic(xml.substr(item, tagEnd - item));
    kept += xml.substr(at, (isStale ? item : end) - at);
    at = isStale ? std::min(xml.find_first_not_of(" \n", end), xml.size()) : end;
  }
  return kept + std::string(xml.substr(at));
}

void ReplaceExifThumbnail(std::vector<uint8_t>& block, const PixelChange& change,
                          Changes& changes) {
  ExifBlock exif(block);
  bool isReplaced = !exif.IsDamaged();
  try {
    if (isReplaced) detail::FollowThumbnail(exif, change, changes);
  } catch (const RangeError&) {
    // A directory has no room for a changed value.
    isReplaced = false;
    changes.Lose(LossKind::thumbnail, "the thumbnail", "the EXIF block has no room for a new one");
  }
  if (!isReplaced) {
    exif = ExifBlock(block);
    exif.EraseThumbnail();
  }
  block = exif.TakeBytes();
}

void FollowTiffTags(Metadata& metadata, Changes& changes) {
  constexpr uint16_t kGdalMetadata = 42112;
  std::erase_if(metadata.tiffTags, [&](TagValue& tag) {
    if (tag.tag != kGdalMetadata) return false;
    const std::string xml =
        WithoutStatistics({reinterpret_cast<const char*>(tag.bytes.data()), tag.bytes.size()});
    if (xml.size() == tag.bytes.size()) return false;
    tag.bytes.assign(xml.begin(), xml.end());
    tag.count = tag.bytes.size();
    changes.Note("statistics of the old pixels were removed");
    return xml.find(kItem) == std::string::npos;
  });
}

}  // namespace

void FollowPixels(Metadata& metadata, const PixelChange& change, Changes& changes) {
  metadata.resolution = change.resolution;
  FollowExif(metadata, change, changes);
  FollowPixelsInXmp(metadata.xmp, metadata.extendedXmp, change, changes);
  FollowResources(metadata, change, changes);
  if (!change.pixelsChanged) return;
  RemoveStaleSegments(metadata, changes);
  std::erase_if(metadata.pngChunks,
                [](const OtherBlock& chunk) { return chunk.kind == detail::PngKind("tIME"); });
  if (!change.keepsValues) FollowTiffTags(metadata, changes);
}

bool HasThumbnail(const Metadata& metadata) {
  if (!metadata.exif.empty() && ExifBlock(metadata.exif).HasThumbnail()) return true;
  const ImageResources resources(metadata.photoshop);
  return resources.Find(image_resource::kThumbnail) != nullptr ||
         resources.Find(image_resource::kOldThumbnail) != nullptr;
}

void ReplaceThumbnails(Metadata& metadata, std::span<const uint8_t> thumbnail, Changes& changes) {
  PixelChange change;
  change.thumbnail = thumbnail;
  if (!metadata.exif.empty()) ReplaceExifThumbnail(metadata.exif, change, changes);
  if (!metadata.photoshop.empty()) {
    ImageResources resources(metadata.photoshop);
    FollowThumbnails(resources, change, changes);
    metadata.photoshop = resources.Bytes();
  }
}

}  // namespace rasterkit
