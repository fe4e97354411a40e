#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/metafiles/records/metafile_facts.h>
#include <rasterkit/pictures/reading/grid.h>
#include <rasterkit/pictures/reading/metafile_drawing.h>
#include <rasterkit/pictures/reading/photo_facts.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/isolation.h>

namespace rasterkit {

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

/// The rows as decoded: numbers of a grid are not yet converted to grays.
struct LoadedFrame : PictureFile {
  ImagingFrame frame;
};

struct PictureReading {
  /// Threads that decode strips and tiles of a TIFF file, at least 1. The pixels do not depend on
  /// it.
  int threads = 1;
  /// How a metafile is drawn.
  MetafileDrawing drawing;
  /// Where the file is read.
  Isolation isolation = Isolation::none;
  /// False: only the facts are read, and a metafile is not looked into.
  bool withPixels = true;
  /// Called now and then while a metafile is drawn, and while a worker process reads. False ends
  /// the drawing, which stays incomplete; with a worker an Error is thrown. May throw.
  std::function<bool()> keepGoing;
};

/// Reads the first picture of a file; the type is detected from the content. The stream is at the
/// start of the file; a pipe or a device has the size 0. A worker process gets a copy of the bytes;
/// if it ends early, `picture` stays as it was. Facts that were read before a failure
/// (type, file size, photograph, directories) stay in `picture`. Throws FileError, FormatError,
/// UnsupportedError or LimitError with the text of the codec.
RASTERKIT_EXPORT void ReadPicture(LoadedFrame& picture, TStream& stream,
                                  const PictureReading& reading = {});

/// Reads the first picture of a file. A worker process reads the open file itself, without a copy.
/// Throws as above, and FileError if the file cannot be opened; every error names the file.
RASTERKIT_EXPORT void ReadPicture(LoadedFrame& picture, const std::string& fileName,
                                  const PictureReading& reading = {});

/// Converts the rows to a picture for viewing: numbers of a grid become grays (see VisibleRows),
/// which adds a warning. `picture.frame` is empty afterwards.
RASTERKIT_EXPORT Raster TakeVisibleRows(LoadedFrame& picture);

}  // namespace rasterkit
