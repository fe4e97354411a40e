#pragma once

#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/pictures/reading/metafile_drawing.h>

namespace rasterkit::tool {

/// How an output gets its name.
struct SaveRules {
  /// It may replace a file.
  bool overwrite = false;
  /// It is reported when it is on the disk.
  bool syncs = true;
};

/// What every verb that writes pictures accepts.
struct OutputOptions {
  /// Inputs first, output last; with `outDir` all of them are inputs.
  std::vector<std::string> files;
  std::string outDir;
  /// With `outDir`: the extension of the outputs, with or without its dot. Empty keeps that of each
  /// input.
  std::string type;
  int jobs = 1;
  bool keepGoing = false;
  bool overwrite = false;
  /// Each input is its own output.
  bool inPlace = false;
  bool noSync = false;
  bool strict = false;
  bool json = false;
  /// No warnings, notes and progress.
  bool quiet = false;
  /// The verb has --in-place.
  bool takesInPlace = false;
  /// Outputs may be metafiles too.
  bool takesMetafiles = false;

  SaveRules Saving() const { return {overwrite || inPlace, !noSync}; }
};

/// How a picture is turned and written.
struct PictureOptions {
  /// Degrees, positive counter-clockwise.
  double angle = 0;
  /// Six hexadecimal digits RRGGBB, or "auto".
  std::string background = "FFFFFF";
  /// Bits per pixel; 0 keeps the depth.
  int bits = 0;
  /// JPEG quality, 1 to 100.
  int quality = 90;
  /// For TIFF files.
  TiffCompression compression = TiffCompression::standard;
  /// Threads for a turn and for reading and writing TIFF files; 0 is one per processor.
  int threads = 0;
  /// For metafiles.
  MetafileDrawing metafile;
  /// The picture is the only one: a progress bar may be shown.
  bool showsProgress = false;
};

}  // namespace rasterkit::tool
