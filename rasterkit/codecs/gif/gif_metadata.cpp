#include <algorithm>

#include <rasterkit/codecs/gif/gif_metadata.h>
#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr size_t kScreenHeaderBytes = 13, kScreenFlagsAt = 10;
constexpr size_t kPictureHeaderBytes = 10, kExtensionHeaderBytes = 2;
constexpr uint8_t kPicture = 0x2C, kExtension = 0x21;
constexpr uint8_t kCommentLabel = 0xFE, kApplicationLabel = 0xFF;

/// Skips sub-blocks: each starts with a byte that holds its length; the last one has length 0.
Bytes BehindSubBlocks(Bytes rest) {
  while (!rest.empty() && rest[0] != 0) {
    const size_t block = rest[0] + size_t{1};
    rest = rest.subspan(std::min(block, rest.size()));
  }
  return rest.subspan(std::min<size_t>(1, rest.size()));
}

/// Bytes of the palette that a byte of flags announces.
size_t PaletteBytes(uint8_t flags) {
  constexpr uint8_t kHasPalette = 0x80;
  return (flags & kHasPalette) != 0 ? size_t{6} << (flags & 7) : 0;
}

void AddExtension(PictureMetadata& metadata, uint8_t label, Bytes blocks) {
  if (label == kCommentLabel) metadata.Add(MetadataKind::comment);
  if (label != kApplicationLabel || blocks.empty()) return;
  if (StartsWith(blocks.subspan(1), "XMP Data")) metadata.Add(MetadataKind::xmp);
  if (StartsWith(blocks.subspan(1), "ICCRGBG1")) metadata.Add(MetadataKind::profile);
}

}  // namespace

/// Screen header and palette are followed by extensions and pictures. Each has a mark, a header and
/// sub-blocks.
void ReadGifMetadata(Bytes file, PictureMetadata& metadata) {
  if (file.size() < kScreenHeaderBytes) return;
  const size_t palette = PaletteBytes(file[kScreenFlagsAt]);
  Bytes rest = file.subspan(std::min(kScreenHeaderBytes + palette, file.size()));
  int pictures = 0;
  while (rest.size() > kPictureHeaderBytes) {
    size_t header = kExtensionHeaderBytes;
    if (rest[0] == kPicture) {
      ++pictures;
      // One more byte holds the code size of the compressed data.
      header = kPictureHeaderBytes + PaletteBytes(rest[kPictureHeaderBytes - 1]) + 1;
    } else if (rest[0] == kExtension) {
      AddExtension(metadata, rest[1], rest.subspan(kExtensionHeaderBytes));
    } else {
      break;
    }
    rest = BehindSubBlocks(rest.subspan(std::min(header, rest.size())));
  }
  metadata.pictures = std::max(1, pictures);
}

}  // namespace rasterkit::detail
