#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/raster/pixel_layout.h>

namespace rasterkit {

/// What a picture file states besides its pixels, read from its headers: the whole file is walked
/// where blocks can follow the pixels, but nothing is decoded.
struct PictureHeader {
  /// As stored, not yet upright.
  int width = 0, height = 0;
  /// As stored in the file: its own depth, model and bands.
  PixelLayout layout;
  Form form;
  Metadata metadata;
  /// Of EXIF, or tag 274 of a TIFF file; 1 to 8, nothing if absent or invalid.
  std::optional<int> orientation;
  /// Pictures in the file: pages of a TIFF file without smaller copies and masks, frames of an
  /// animation.
  int pages = 1, frames = 1;
  /// Why a TIFF file can have further pages that cannot be found; empty if all of them are.
  std::string lostPages;
  /// Tags of a page that lead to directories of other programs: kept where compressed pixels are
  /// copied, and lost where they are written anew.
  std::vector<uint16_t> directoryTags;
  /// Smaller copies and masks of the first page of a TIFF file.
  int smallerCopies = 0, masks = 0;
  /// Tags of the first directory that state a position, a coordinate system or "no data": 33550,
  /// 33922, 34264, 34735, 34736, 34737, 42113, 50844.
  std::vector<TagValue> positionTags;
  /// Hidden copies of the picture and other things behind its end, by name: "preview of the MPF
  /// index", "video of 2.1 MB".
  std::vector<std::string> hiddenCopies, hiddenOthers;
  /// Name of a position on a map that the file states in a form that is not read.
  std::string unreadPosition = {};
  /// Place of what follows the end of a JPEG picture; 0 if nothing does.
  uint64_t trailerAt = 0;
  /// True if the file is cut off, so that its compressed pixels must not be copied. Set for PNG.
  bool isCutOff = false;
  std::vector<std::string> warnings;
};

}  // namespace rasterkit
