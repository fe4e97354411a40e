#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/graphics/bitmap.h>

#include "tool/pictures/metafile_input.h"
#include "tool/pictures/placement/grid.h"
#include "tool/reports/photo_facts.h"

namespace rasterkit::tool {

/// What a file states besides its pixels.
struct PictureFile {
  PictureType type = PictureType::unknown;
  /// Includes the orientation tag of a TIFF file.
  PhotoFacts photo;
  /// Kinds of metadata in the file: see PictureMetadata::kinds and TiffFacts::metadata.
  std::vector<MetadataKind> metadata;
  std::vector<std::string> warnings;
  uint64_t bytes = 0;
  /// Set for a TIFF file whose directories can be read.
  std::optional<TiffFacts> tiff;
  /// Set for a TIFF file whose pixels are numbers, not colors.
  std::optional<GridType> grid;

  /// Set for a metafile.
  std::optional<MetafileFacts> metafile;

  /// Number of pictures of an animation.
  int frames = 1;

  /// Number of pictures in the file, without smaller copies and masks of others.
  int Pictures() const { return tiff ? tiff->pages - tiff->secondaryPages : frames; }
};

/// A picture as stored in its file, not yet turned upright.
struct LoadedPicture : PictureFile {
  std::unique_ptr<TBitmap> bitmap;
};

/// The rows as decoded: numbers of a grid are not yet converted to grays.
struct LoadedFrame : PictureFile {
  ImagingFrame frame;
};

/// Loads the first picture of a file for viewing. The type is detected from the content, and the
/// numbers of a grid become grays (see VisibleRows). Decodes on several `threads` if the type
/// allows it; a metafile is drawn according to `drawing`. Throws Failure(exitInputUnreadable).
LoadedPicture LoadPicture(const std::string& file, int threads = 1,
                          const MetafileDrawing& drawing = {});

/// Loads the rows. Facts that were read before a failure (type, file size, photograph, directories)
/// stay in `frame`. Throws Failure(exitInputUnreadable).
void LoadFrameInto(LoadedFrame& frame, const std::string& file, int threads = 1,
                   const MetafileDrawing& drawing = {});

}  // namespace rasterkit::tool
