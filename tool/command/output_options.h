#pragma once

#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/raster/pixel_format.h>

#include "tool/pictures/metafile_input.h"

namespace CLI {
class App;
}

namespace rasterkit::tool {

/// What every verb that writes pictures takes; each option means the same everywhere.
struct OutputOptions {
  /// Inputs first, output last; all are inputs with `outDir`.
  std::vector<std::string> files;
  std::string outDir;
  /// With `outDir`: the extension of the outputs without its dot; empty keeps that of each input.
  std::string type;
  int jobs = 1;
  bool keepGoing = false;
  bool overwrite = false;
  bool strict = false;
  bool json = false;
  /// Outputs may be metafiles too.
  bool takesMetafiles = false;
};

/// All but `type`, which has an option of its own.
void AddOutputOptions(CLI::App& verb, OutputOptions& options);
void AddType(CLI::App& verb, OutputOptions& options);

/// How a picture is turned and written.
struct PictureOptions {
  /// Degrees, positive counter-clockwise.
  double angle = 0;
  /// Six hexadecimal digits RRGGBB, or "auto".
  std::string background = "FFFFFF";
  /// 0 keeps the depth.
  int bits = 0;
  int quality = 90;
  /// Of TIFF files.
  TiffCompression compression = TiffCompression::standard;
  /// Of a turn and of reading and writing TIFF files; 0 is one for each processor.
  int threads = 0;
  /// Of metafiles.
  MetafileDrawing metafile;
  /// One picture alone: how far its operations are may be drawn.
  bool showsProgress = false;
};

/// Each adds the option of that name, with the one meaning that it has in every verb.
void AddAngle(CLI::App& verb, PictureOptions& options, bool required);
void AddBackground(CLI::App& verb, PictureOptions& options);
/// Of verbs that uncover no corners.
void AddSolidBackground(CLI::App& verb, PictureOptions& options);
void AddBits(CLI::App& verb, PictureOptions& options);
void AddQuality(CLI::App& verb, PictureOptions& options);
void AddCompression(CLI::App& verb, PictureOptions& options);
/// Of metafiles: --dpi and --size, which exclude each other.
void AddMetafileSize(CLI::App& verb, PictureOptions& options);
/// Of verbs whose own work is done by several threads.
void AddThreads(CLI::App& verb, PictureOptions& options);
/// Of verbs that leave threads to the reader and the writer of the files.
void AddFileThreads(CLI::App& verb, PictureOptions& options);

/// For options that are colours: six hexadecimal digits. The sentence says what is wrong, or is
/// empty.
std::string CheckColor(const std::string& text);
/// The colour of such digits.
TColor ColorOf(const std::string& digits);

}  // namespace rasterkit::tool
