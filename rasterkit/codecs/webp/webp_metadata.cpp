#include <algorithm>
#include <string_view>

#include <rasterkit/codecs/rows/byte_marks.h>
#include <rasterkit/codecs/webp/webp_chunks.h>
#include <rasterkit/codecs/webp/webp_metadata.h>

namespace rasterkit::detail {

void ReadWebpMetadata(std::span<const uint8_t> file, PictureMetadata& metadata) {
  using std::string_view_literals::operator""sv;
  constexpr std::string_view kJpegPrefix = "Exif\0\0"sv;
  int pictures = 0;
  for (WebpChunks chunks(file); chunks.Next() && chunks.IsWhole();) {
    if (chunks.IsNamed("EXIF")) {
      // Some writers put the prefix of a JPEG segment in front.
      const bool hasPrefix = StartsWith(chunks.Data(), kJpegPrefix);
      metadata.AddExif(chunks.Data().subspan(hasPrefix ? kJpegPrefix.size() : 0));
    } else if (chunks.IsNamed("XMP ")) {
      metadata.Add(MetadataKind::xmp);
    } else if (chunks.IsNamed("ICCP")) {
      metadata.Add(MetadataKind::profile);
    } else if (chunks.IsNamed("ANMF")) {
      ++pictures;
    }
  }
  metadata.pictures = std::max(1, pictures);
}

}  // namespace rasterkit::detail
