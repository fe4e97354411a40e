#include "tool/command/shared_options.h"

#include <cmath>
#include <utility>

#include <rasterkit/pictures/reading/picture_size.h>

#include "tool/arguments/color_argument.h"
#include "tool/arguments/fill_argument.h"
#include "tool/arguments/size_argument.h"

namespace rasterkit::tool {
namespace {

/// Sections of the help.
constexpr const char* kFiles = "Files and results";
constexpr const char* kPicture = "Output picture";

struct Sampling {
  const char* name;
  int x, y;
};
constexpr Sampling kSamplings[] = {
    {"4:4:4", 1, 1}, {"4:2:2", 2, 1}, {"4:2:0", 2, 2}, {"4:4:0", 1, 2}, {"4:1:1", 4, 1}};

constexpr std::pair<const char*, PositionFrom> kPositions[] = {
    {"auto", PositionFrom::automatic},
    {"worldfile", PositionFrom::worldFile},
    {"tags", PositionFrom::tags},
    {"aux", PositionFrom::auxXml},
    {"none", PositionFrom::none}};

std::string CheckFill(const std::string& text) {
  if (ParseFill(text)) return {};
  return CheckColor(text) + " (or transparent, nodata, edge, auto)";
}

std::string CheckBackground(const std::string& text) {
  return text == "auto" ? std::string() : CheckColor(text);
}

std::string CheckDpi(const std::string& text) {
  const auto dpi = ReadReal(text);
  const bool ok = dpi && *dpi >= 1 && *dpi <= 100000;
  return ok ? std::string() : "a resolution is 1 to 100000 pixels per inch, not '" + text + "'";
}

}  // namespace

std::string CheckAngle(const std::string& text) {
  const auto angle = ReadReal(text);
  const bool ok = angle && std::isfinite(*angle) && std::isfinite(static_cast<float>(*angle));
  return ok ? std::string() : "an angle is a number of degrees, not '" + text + "'";
}

void AddOutputOptions(Verb& verb, OutputOptions& options, const std::string& valueName,
                      const std::string& description) {
  verb.Files(valueName, options.files, description);
  verb.Text("--out-dir", "DIR", options.outDir, {},
            "write each output into this folder, which is created if it does not exist")
      .In(kFiles);
  verb.Number("--jobs", "N", options.jobs, {1, 64}, "process N pictures at a time, 1 to 64 [1]")
      .In(kFiles);
  verb.Flag("--continue", options.keepGoing, "go on with the next picture after a failure")
      .In(kFiles);
  verb.Flag("--overwrite", options.overwrite, "replace existing outputs").In(kFiles);
  if (options.isForPictures) {
    verb.Flag("--in-place", options.inPlace,
              "write each input over itself; all files are inputs, and no output is given")
        .In(kFiles);
    verb.Flag("--dry-run", options.dryRun,
              "write nothing; print what would be written, kept and lost, and how many bytes and "
              "how much memory it would take at most")
        .In(kFiles);
  }
  verb.Flag("--no-sync", options.noSync,
            "do not wait until outputs are on the disk; a power failure can lose them")
      .In(kFiles);
  verb.Flag("--strict", options.strict, "exit with code 5 if something of the input is lost")
      .In(kFiles);
  verb.Flag("--json", options.json, "print one JSON object per picture on stdout").In(kFiles);
  verb.Flag("-q", "--quiet", options.quiet,
            "print no warnings and notes, and no progress; losses and errors are still printed")
      .In(kFiles);
  if (!options.isForPictures) return;
  verb.Flag("-v", "--verbose", options.verbose,
            "print also what is kept, and where the position comes from")
      .In(kFiles);
}

void AddType(Verb& verb, OutputOptions& options) {
  const std::string types = options.takesMetafiles
                                ? "bmp, jpg, png, tif; for metafiles also emf or wmf"
                                : "bmp, jpg, png or tif";
  verb.Text("--type", "EXT", options.type, {},
            "extension of the outputs in --out-dir: " + types + " [that of each input]")
      .In(kFiles);
}

Option AddAngle(Verb& verb, PictureOptions& options) {
  return verb.Real("--angle", "A", options.angle, CheckAngle,
                   "turn by A degrees; positive is counter-clockwise");
}

void AddCorners(Verb& verb, PictureOptions& options) {
  verb.Text("--fill", "COLOR|WORD", options.fill, CheckFill,
            "what stands in uncovered corners: a color, transparent, nodata (the number that means "
            "no data), edge (the nearest pixel), or auto (what the picture can hold) [the color of "
            "--background]")
      .In(kPicture);
  AddFilter(verb, options, "nearest or linear [nearest]", {"nearest", "linear", "area"});
  // Command lines from before --fill have --background auto.
  verb.Text("--background", "COLOR", options.background, CheckBackground,
            "color behind dropped transparency and behind metafiles [white]")
      .In(kPicture);
}

void AddFilter(Verb& verb, PictureOptions& options, const std::string& choices,
               const std::vector<std::string>& words) {
  verb.OneOf("--filter", "NAME", options.filter, words, "how new pixels are computed: " + choices)
      .In(kPicture);
}

void AddBackground(Verb& verb, PictureOptions& options) {
  verb.Text("--background", "COLOR", options.background, CheckColor,
            "color behind dropped transparency and behind metafiles [white]")
      .In(kPicture);
}

void AddBits(Verb& verb, PictureOptions& options) {
  verb.OneOf("--bits", "N", options.bits, {1, 4, 8, 15, 16, 24, 32},
             "bits per pixel: 1, 4, 8, 15, 16, 24 or 32 [what the picture needs]")
      .In(kPicture);
}

void AddQuality(Verb& verb, PictureOptions& options) {
  verb.Number("--quality", "Q", options.quality, {1, 100},
              "JPEG quality, 1 to 100 [that of a JPEG input, else 90]")
      .In(kPicture);
}

void AddSampling(Verb& verb, PictureOptions& options) {
  const auto take = [&options](const std::string& text) {
    for (const Sampling& sampling : kSamplings) {
      if (text != sampling.name) continue;
      options.chromaX = sampling.x;
      options.chromaY = sampling.y;
    }
  };
  std::vector<std::string> choices;
  for (const Sampling& sampling : kSamplings) choices.emplace_back(sampling.name);
  verb.Parsed("--sampling", "S", take, CheckChoice(choices),
              "sampling of JPEG colors: 4:4:4 (full), 4:2:2, 4:2:0, 4:4:0 or 4:1:1 [that of a JPEG "
              "input, else 4:2:0, and 4:4:4 above quality 90]")
      .In(kPicture);
}

void AddPosition(Verb& verb, PictureOptions& options) {
  verb.Flag("--world-file", options.writesWorldFile,
            "write a world file beside the output in any case [if the input has one, or if the "
            "output cannot state its position itself]")
      .In(kPicture);
  const auto take = [&options](const std::string& text) {
    for (const auto& [name, from] : kPositions) {
      if (text == name) options.positionFrom = from;
    }
  };
  std::vector<std::string> choices;
  for (const auto& [name, from] : kPositions) choices.emplace_back(name);
  verb.Parsed("--position-from", "SOURCE", take, CheckChoice(choices),
              "which position of the input counts: auto (a world file, then tags, then .aux.xml), "
              "worldfile, tags, aux or none [auto]")
      .In(kPicture);
}

void AddStrip(Verb& verb, PictureOptions& options) {
  const auto strip = [&edit = options.edit](bool isAll) {
    edit.stripAll = true;
    edit.stripProfile = isAll;
  };
  verb.FlagOrWord("--strip", "all", strip,
                  "write no metadata but profile, resolution, position on the map, and the "
                  "orientation of pixels that are not turned; --strip=all: no profile either")
      .In(kPicture);
  verb.Flag("--strip-gps", options.edit.stripGps,
            "write nothing that says where the photograph was taken; the position on the map stays")
      .In(kPicture);
  verb.Flag("--strip-maker-note", options.edit.stripMakerNote,
            "write no maker note, the block of a camera in a form of its own")
      .In(kPicture);
}

void AddCompression(Verb& verb, PictureOptions& options) {
  static const std::vector<std::pair<std::string, TiffCompression>> kNames = {
      {"standard", TiffCompression::standard}, {"none", TiffCompression::none},
      {"lzw", TiffCompression::lzw},           {"deflate", TiffCompression::deflate},
      {"packbits", TiffCompression::packBits}, {"g4", TiffCompression::group4}};
  std::vector<std::string> choices;
  choices.reserve(kNames.size());
  for (const auto& [name, compression] : kNames) choices.push_back(name);
  const auto take = [&options](const std::string& text) {
    for (const auto& [name, compression] : kNames) {
      if (name == text) options.compression = compression;
    }
  };
  verb.Parsed("--compression", "NAME", take, CheckChoice(choices),
              "compression of TIFF files: none, lzw, deflate, packbits or g4 (1-bit only) "
              "[that of a TIFF input, else lzw, or g4 for 1-bit pictures]")
      .In(kPicture);
}

void AddMetafileSize(Verb& verb, PictureOptions& options) {
  const Option dpi = verb.Real("--dpi", "N", options.metafile.dpi, CheckDpi,
                               "resolution at which a metafile is drawn, in pixels per inch [96]")
                         .In(kPicture);
  const auto take = [&options](const std::string& text) {
    options.metafile.size = ParseSize(text).value();
  };
  verb.Parsed("--size", "WxH", take, CheckSize,
              "size at which a metafile is drawn, in pixels; one side alone (Wx or xH) keeps the "
              "proportions")
      .In(kPicture)
      .Excludes(dpi);
}

void AddThreads(Verb& verb, PictureOptions& options) {
  verb.Number("--threads", "N", options.threads, {1, 100},
              "threads for one picture, 1 to 100 [one per processor]")
      .In(kPicture);
}

}  // namespace rasterkit::tool
