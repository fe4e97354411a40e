#include <rasterkit/metadata/exif_block.h>
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

}  // namespace

void StripMetadata(Metadata& metadata, const MetadataEdit& edit) {
  if (edit.stripAll) {
    Metadata kept;
    kept.profile = metadata.profile;
    kept.resolution = metadata.resolution;
    kept.hasJfif = metadata.hasJfif;
    metadata = std::move(kept);
    return;
  }
  if (metadata.exif.empty() || !(edit.stripGps || edit.stripThumbnail)) return;
  ExifBlock exif(std::move(metadata.exif));
  if (edit.stripGps) StripGps(exif);
  if (edit.stripThumbnail) exif.RemoveThumbnail();
  metadata.exif = exif.TakeBytes();
}

}  // namespace rasterkit::detail
