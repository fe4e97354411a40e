#include <span>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/pictures/reading/embedded_thumbnail.h>

namespace rasterkit {
namespace {

/// Resource 1036: a head that says what follows, then a JPEG file.
std::vector<uint8_t> ThumbnailOfResources(const Metadata& metadata) {
  constexpr size_t kHeadBytes = 28, kFormatEnd = 4;
  constexpr uint8_t kJpeg = 1;
  const ImageResources resources(metadata.photoshop);
  const ImageResource* const resource = resources.Find(image_resource::kThumbnail);
  if (resource == nullptr || resource->bytes.size() <= kHeadBytes) return {};
  if (resource->bytes[kFormatEnd - 1] != kJpeg) return {};
  const auto jpeg = std::span(resource->bytes).subspan(kHeadBytes);
  return {jpeg.begin(), jpeg.end()};
}

}  // namespace

std::vector<uint8_t> EmbeddedThumbnail(const Metadata& metadata) {
  if (!metadata.exif.empty()) {
    const ExifBlock exif(metadata.exif);
    const auto jpeg = exif.Thumbnail();
    if (!jpeg.empty()) return {jpeg.begin(), jpeg.end()};
  }
  return ThumbnailOfResources(metadata);
}

}  // namespace rasterkit
