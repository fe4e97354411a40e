#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/follow_pixels.h>

// Stand-in until metadata follow the pixels.

namespace rasterkit {

void FollowPixels(Metadata& metadata, const PixelChange& change, Changes&) {
  metadata.resolution = change.resolution;
  if (metadata.exif.empty()) return;
  ExifBlock exif(std::move(metadata.exif));
  exif.SetUpright();
  if (change.thumbnail.empty()) {
    exif.RemoveThumbnail();
  } else {
    exif.SetThumbnail(change.thumbnail);
  }
  metadata.exif = exif.TakeBytes();
}

}  // namespace rasterkit
