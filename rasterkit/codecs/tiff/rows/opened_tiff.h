#pragma once

#include <memory>
#include <string>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/tiff/rows/tiff_picture.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// The first picture of a file, checked and ready to be read.
struct OpenedTiff {
  /// The file starts at the stream's position. Throws as TiffHandle does.
  explicit OpenedTiff(TStream& stream) : source(stream), handle(source) {}

  TiffSource source;
  TiffHandle handle;
  TiffLayout layout;
  TiffColors colors;
  TiffBlanks blanks;
  /// The kind of pixels that rows become; its rows have no meaning.
  Pixels like;
  /// What missing pixels are filled with, as in TiffTarget.
  std::array<uint8_t, 8> blank{};
  size_t blankBytes = 0;

  /// The rows of pixels of the kind of `like`.
  TiffTarget TargetOf(Pixels& pixels) const;
  TiffTarget TargetOf(Raster& raster) const;
  TiffTarget TargetOf(Samples& samples) const;
  /// Adds what libtiff said about the directory.
  void KeepWarnings(CodecReport& report);
};

/// Opens a picture to look at, or the numbers of a grid of one band. Throws FormatError,
/// UnsupportedError and LimitError. What was noticed is added to `report`.
std::unique_ptr<OpenedTiff> OpenTiffFrame(TStream& stream, TiffHolding holding,
                                          CodecReport& report);

}  // namespace rasterkit::detail
