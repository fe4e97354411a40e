#include <array>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/pictures/strip_metadata.h>

namespace rasterkit::detail {
namespace {

constexpr uint16_t kGpsPointer = 0x8825;

void StripGps(ExifBlock& exif) {
  for (const TagValue& value : exif.All(ExifDirectoryId::gps)) {
    exif.Remove(ExifDirectoryId::gps, value.tag);
  }
  exif.Remove(ExifDirectoryId::main, kGpsPointer);
}

/// Every thumbnail that belongs to the metadata: of EXIF, of Photoshop, of XMP.
void StripThumbnails(Metadata& metadata) {
  if (!metadata.exif.empty()) {
    ExifBlock exif(std::move(metadata.exif));
    exif.RemoveThumbnail();
    metadata.exif = exif.TakeBytes();
  }
  ImageResources resources(metadata.photoshop);
  const bool hadThumbnail = resources.Remove(image_resource::kThumbnail);
  if (resources.Remove(image_resource::kOldThumbnail) || hadThumbnail) {
    metadata.photoshop = resources.Bytes();
  }
  for (std::string* text : {&metadata.xmp, &metadata.extendedXmp}) {
    if (text->empty()) continue;
    XmpPacket packet(*text);
    if (packet.Remove(xmp_name::kXmp, "Thumbnails")) *text = packet.Text();
  }
}

void SetResolution(Metadata& metadata, const Resolution& resolution) {
  constexpr uint16_t kX = 282, kY = 283, kUnit = 296, kInch = 2;
  metadata.resolution = resolution;
  if (metadata.exif.empty()) return;
  ExifBlock exif(std::move(metadata.exif));
  if (!exif.IsDamaged() && exif.Has(ExifDirectoryId::main, kX)) {
    exif.SetRational(ExifDirectoryId::main, kX, resolution.x);
    exif.SetRational(ExifDirectoryId::main, kY, resolution.y);
    exif.SetWords(ExifDirectoryId::main, kUnit, std::array{kInch});
  }
  metadata.exif = exif.TakeBytes();
}

}  // namespace

void StripMetadata(Metadata& metadata, const MetadataEdit& edit) {
  if (edit.resolution) SetResolution(metadata, *edit.resolution);
  if (edit.stripAll) {
    Metadata kept;
    kept.profile = metadata.profile;
    kept.resolution = metadata.resolution;
    kept.hasJfif = metadata.hasJfif;
    metadata = std::move(kept);
    return;
  }
  if (edit.stripThumbnail) StripThumbnails(metadata);
  if (metadata.exif.empty() || !edit.stripGps) return;
  ExifBlock exif(std::move(metadata.exif));
  StripGps(exif);
  metadata.exif = exif.TakeBytes();
}

}  // namespace rasterkit::detail
