#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/pictures/reading/metafile_drawing.h>
#include <rasterkit/pictures/saving_options.h>
#include <rasterkit/pictures/steps.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/raster/number_stretch.h>

namespace rasterkit::tool {

class Recorder;

/// How an output gets its name.
struct SaveRules {
  /// It may replace a file.
  bool overwrite = false;
  /// It is reported when it is on the disk.
  bool syncs = true;
  /// A file that it replaces keeps a backup name.
  bool keepsBackup = false;
};

/// What every verb that writes pictures accepts.
struct OutputOptions {
  /// Inputs first, output last; with `outDir` all of them are inputs.
  std::vector<std::string> files;
  std::string outDir;
  /// The extension of the outputs in `outDir`, with or without its dot, or the type of the output
  /// "-". Empty keeps that of each input.
  std::string type;
  /// An input whose extension means `type` keeps it: ".jpeg" stays.
  bool keepsExtension = false;
  /// With `outDir`: the pattern of the names of outputs; see CheckNamePattern. Empty: the names of
  /// the inputs.
  std::string name;
  /// The verb, for `name`.
  std::string verb;
  int jobs = 1;
  bool keepGoing = false;
  bool overwrite = false;
  /// Each input is its own output.
  bool inPlace = false;
  /// The verb has --in-place: its outputs can take the place of inputs.
  bool hasInPlace = true;
  /// Without the backups of --in-place.
  bool noBackup = false;
  bool noSync = false;
  bool strict = false;
  bool json = false;
  /// No warnings, notes and progress.
  bool quiet = false;
  /// Also what is kept, and the sources of positions.
  bool verbose = false;
  /// Says what would be done and writes nothing.
  bool dryRun = false;
  /// The verb changes pictures one by one, and has --in-place and --dry-run.
  bool isForPictures = false;
  /// "-" is stdin as the input and stdout as the output.
  bool takesStreams = false;
  /// Outputs may be metafiles too.
  bool takesMetafiles = false;
  /// The file of --record; empty without it.
  std::string record;

  SaveRules Saving() const { return {overwrite || inPlace, !noSync, inPlace && !noBackup}; }
};

/// How a picture is turned and written.
struct PictureOptions {
  /// Pages of a TIFF file that are changed; a list as typed, already checked.
  std::string pages = "1";
  /// An output has one page, even a TIFF file.
  bool onlyThisPage = false;
  /// Degrees, positive counter-clockwise.
  double angle = 0;
  /// A color, or "auto"; see ColorOf. Empty for white.
  std::string background;
  /// Another color than the usual one was given.
  bool HasBackground() const { return !background.empty() && background != "FFFFFF"; }
  /// A color or a word; empty for the color of `background`.
  std::string fill;
  /// "nearest", "linear" or "area"; empty chooses by the picture.
  std::string filter;
  /// How numbers of more than 8 bits are shown.
  NumberStretch stretch;
  /// Bits per pixel; 0 keeps the depth.
  int bits = 0;
  /// JPEG quality, 1 to 100. Nothing keeps that of a JPEG input.
  std::optional<int> quality;
  /// Sampling of the chroma of a JPEG file; 0 keeps that of a JPEG input.
  int chromaX = 0, chromaY = 0;
  /// Whether a JPEG file is turned and cropped without being compressed again. Nothing: where that
  /// is exact.
  std::optional<Lossless> lossless;
  /// Packing of PNG files, 0 to 12. Nothing chooses by the kind of pixels.
  std::optional<int> pngLevel;
  /// For TIFF files. Nothing keeps that of a TIFF input.
  std::optional<TiffCompression> compression;
  /// The source of the position that counts.
  PositionFrom positionFrom = PositionFrom::automatic;
  /// A world file of another name than the input; empty for the one beside it.
  std::string worldFile;
  /// A world file is written in any case.
  bool writesWorldFile = false;
  /// What the output shall not have.
  MetadataEdit edit;
  /// What pages of a TIFF file that are not changed shall lack too; empty for the strips of `edit`.
  MetadataEdit editOfOthers;
  /// Pixels stay as stored; the orientation goes on to be stated.
  bool isAsStored = false;
  /// JPEG files may be decoded smaller before a resize; TIFF files give their smaller copies.
  bool shrinksOnLoad = false;
  /// What a JPEG file holds beside its picture does not matter.
  bool skipsHidden = false;
  /// An output of the type of its input is not written if the encoded pixels cannot be copied.
  bool copiesPixels = false;
  /// Threads for a picture and for reading and writing TIFF files; 0 is one per processor.
  int threads = 0;
  /// Folder of the scratch file of a large picture; empty for that of the output.
  std::string scratch;
  /// Rows that pass through the steps at a time; 0 chooses by their size.
  int bandRows = 0;
  /// For metafiles.
  MetafileDrawing metafile;
  /// The picture is the only one: a progress bar may be shown.
  bool showsProgress = false;
  /// Takes the steps of each picture, for --record; null without it.
  std::shared_ptr<Recorder> recorder;
};

}  // namespace rasterkit::tool
