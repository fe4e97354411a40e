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

/// What a file says beside its pixels.
struct PictureFile {
  PictureType type = PictureType::unknown;
  /// The orientation is also that of a TIFF file's own tag.
  PhotoFacts photo;
  /// What the file holds beside the pixels: see PictureMetadata::kinds and TiffFacts::metadata.
  std::vector<MetadataKind> metadata;
  std::vector<std::string> warnings;
  uint64_t bytes = 0;
  /// Of a TIFF file whose directories can be read.
  std::optional<TiffFacts> tiff;
  /// What the pixels of a TIFF file are when they are numbers, not colours.
  std::optional<GridType> grid;

  /// Of a metafile.
  std::optional<MetafileFacts> metafile;

  /// Pictures of an animation.
  int frames = 1;

  /// Pictures in the file, smaller copies and masks of others not counted.
  int Pictures() const { return tiff ? tiff->pages - tiff->secondaryPages : frames; }
};

/// A picture as its file holds it, not yet turned upright.
struct LoadedPicture : PictureFile {
  std::unique_ptr<TBitmap> bitmap;
};

/// The rows as decoded: the numbers of a grid are not yet made visible.
struct LoadedFrame : PictureFile {
  ImagingFrame frame;
};

/// Loads the first picture by content, whatever the file is called, as something to look at: the
/// numbers of a grid become greys (see VisibleRows).
/// `threads` decode it where its kind can share the work; a metafile is drawn as `drawing` says.
/// Throws Failure(exitInputUnreadable).
LoadedPicture LoadPicture(const std::string& file, int threads = 1,
                          const MetafileDrawing& drawing = {});

/// Loads the rows; what was learnt before a failure (type, size of the file, facts of photograph
/// and directories) stays in `frame`. Throws Failure(exitInputUnreadable).
void LoadFrameInto(LoadedFrame& frame, const std::string& file, int threads = 1,
                   const MetafileDrawing& drawing = {});

}  // namespace rasterkit::tool
