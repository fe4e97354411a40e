#pragma once

#include <optional>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>

namespace rasterkit {

/// Whether the pixels of a JPEG file are moved without being decoded and compressed again.
enum class Lossless {
  /// Where that is exact: turns, mirrors and crops whose new left and top edges lie on the borders
  /// of blocks.
  exact,
  /// Always: up to a block of pixels is dropped at edges that are not on a border.
  trim,
  /// Never.
  off
};

/// How a picture is written. An empty option keeps what the source has.
struct SaveOptions {
  /// Nothing: by the extension of the target, or the source's kind for a stream.
  std::optional<PictureType> type;
  /// JPEG quality, 1 to 100. Nothing: the tables of a JPEG source, else 90.
  std::optional<int> quality;
  /// Sampling of chroma: 1 x 1 for 4:4:4, 2 x 2 for 4:2:0; 0 x 0 keeps the source's.
  int chromaX = 0, chromaY = 0;
  std::optional<TiffCompression> compression;
  /// Packing of a PNG file, 0 (none, quick) to 12 (smallest, slow). Nothing: chosen by the kind of
  /// pixels.
  std::optional<int> pngLevel;
  /// Color behind transparent parts where the target holds no transparency.
  int32_t background = 0xFFFFFF;
  /// A world file is written although the format holds the position in tags.
  bool writesWorldFile = false;
  Lossless lossless = Lossless::exact;
  /// A TIFF file is written with the opened page alone. Else it keeps the other pages of a TIFF
  /// file, encoded as they are, in their order.
  bool onlyThisPage = false;
  /// The target's old file, and the files beside it that are replaced or removed, stay under a
  /// backup name: "plan.tif~" and "plan.tfw~", or "plan.tif~2" and "plan.tfw~2" if one of these is
  /// taken. If no backup can be made, the save throws BackupError and the old file stays.
  bool keepsBackup = false;
  /// An existing target, and files beside it that would contradict it, may be replaced.
  bool mayReplace = true;
  /// The file is on the disk when the call returns.
  bool syncs = true;
};

}  // namespace rasterkit
