#pragma once

#include <optional>
#include <vector>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/codecs/rows/picture_move.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit {

/// What an encoder writes besides pixels, and how.
struct PictureWriting {
  /// The wanted form. What the pixels or the library do not allow becomes the nearest form, with a
  /// note (gray in G4 becomes Deflate). Empty: the format's usual form.
  Form form;
  Metadata metadata;
  /// Tags of a TIFF file for its position; see PictureHeader::positionTags.
  std::vector<TagValue> positionTags;
  /// Quality of a JPEG file, 1 to 100; nothing: the tables of `form`, or 90 without them.
  std::optional<int> quality;
  /// Sampling of chroma as "4:4:4", "4:2:2", "4:2:0", "4:4:0", "4:1:1"; 0 x 0: that of `form`, or
  /// full above quality 90 and halved up to it.
  int chromaX = 0, chromaY = 0;
  /// When compressed pixels are copied: thumbnails of the file header, previews and what follows
  /// the end of the picture are skipped.
  bool dropsHidden = false;
  /// When compressed pixels are copied: they are moved without being decoded (JPEG alone). Form and
  /// metadata are then those of the moved picture.
  std::optional<PictureMove> move;
  /// When pixels are moved: the thumbnails that the metadata has, whatever they show, are replaced
  /// by one of the moved picture. Where none can be made, they are removed, which is a loss.
  bool makesThumbnail = false;
  /// Threads that compress, 1 to 64. The bytes do not depend on it.
  int threads = 1;
  /// Packing of a PNG file, 0 (none) to 12 (smallest file). Nothing: chosen by the kind of pixels.
  /// Interlaced files and those of more than 64 MiB of rows use 9 at most.
  std::optional<int> pngLevel;
};

/// The file as it was written.
struct WrittenPicture {
  Form form;
  PixelLayout layout;
  /// Losses and notes of the encoder: what of the metadata has no place in the format is a loss.
  Changes changes;
};

}  // namespace rasterkit
