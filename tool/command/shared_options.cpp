#include "tool/command/shared_options.h"

#include <cmath>
#include <filesystem>
#include <utility>

#include <rasterkit/pictures/reading/picture_size.h>
#include <rasterkit/pictures/recipes/recipe_words.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/arguments/color_argument.h"
#include "tool/arguments/fill_argument.h"
#include "tool/arguments/name_pattern.h"
#include "tool/arguments/size_argument.h"
#include "tool/arguments/stretch_argument.h"
#include "tool/pages/page_list.h"

namespace rasterkit::tool {
namespace {

/// Sections of the help.
constexpr const char* kFiles = "Files and results";
constexpr const char* kPicture = "Output picture";

/// An option whose words are those of recipes.
template <class Value, size_t count, class Take>
Option AddWord(Verb& verb, const char* name, const char* value,
               const detail::Word<Value> (&words)[count], const Take& take,
               const std::string& help) {
  std::vector<std::string> choices;
  for (const auto& word : words) choices.emplace_back(word.name);
  const auto takeWord = [&words, take](const std::string& text) {
    for (const auto& word : words) {
      if (text == word.name) take(word.value);
    }
  };
  return verb.Parsed(name, value, takeWord, CheckChoice(choices), help);
}

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

constexpr int kMostBandRows = 1 << 20;

std::string CheckFolder(const std::string& text) {
  std::error_code error;
  if (std::filesystem::is_directory(ToPath(text), error)) return {};
  return "must be a folder that exists, not '" + text + "'";
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
  options.verb = verb.Name();
  verb.Files(valueName, options.files, description);
  const Option folder =
      verb.Text("--out-dir", "DIR", options.outDir, {},
                "write each output into this folder, which is created if it does not exist")
          .In(kFiles);
  verb.Text("--name", "PATTERN", options.name, CheckNamePattern,
            "names of the outputs in --out-dir, such as '{stem}-{verb}.{ext}': {stem} and {name} "
            "are the name of the input without and with its extension, {ext} is the extension of "
            "the output, {verb} the verb, {page} the page and {number} the place among the "
            "outputs, both from 1; {number:4} has four digits at least [the name of each input]")
      .In(kFiles)
      .Needs(folder);
  verb.Number("--jobs", "N", options.jobs, {1, 64}, "process N pictures at a time, 1 to 64 [1]")
      .In(kFiles);
  verb.Flag("--continue", options.keepGoing, "go on with the next picture after a failure")
      .In(kFiles);
  verb.Flag("--overwrite", options.overwrite, "replace existing outputs").In(kFiles);
  if (options.isForPictures && options.hasInPlace) {
    const Option inPlace =
        verb.Flag("--in-place", options.inPlace,
                  "write each input over itself; all files are inputs, and no output is given. The "
                  "old file stays as NAME~, or NAME~2 and so on if that exists, and so do files "
                  "beside it that are replaced")
            .In(kFiles);
    verb.Flag("--no-backup", options.noBackup, "keep no backups with --in-place")
        .In(kFiles)
        .Needs(inPlace);
  }
  if (options.isForPictures) {
    verb.Flag("--dry-run", options.dryRun,
              "write nothing; print what would be written, kept and lost, and how many bytes, how "
              "much memory and how much space of a scratch file it would take at most")
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
            "print also what is kept, where the position comes from, and at the end the processor "
            "time, page faults and most memory of the tool, without worker processes")
      .In(kFiles);
}

void AddFormat(Verb& verb, OutputOptions& options) {
  const std::string types = options.takesMetafiles
                                ? "bmp, jpg, png, tif; for metafiles also emf or wmf"
                                : "bmp, jpg, png or tif";
  const std::string where = options.takesStreams
                                ? "the outputs in --out-dir, or of the output '-': "
                                : "the outputs in --out-dir: ";
  const Option format =
      verb.Text("--format", "EXT", options.type, {},
                "type and extension of " + where + types + " [that of each input]")
          .In(kFiles);
  // The name of this option before the outputs included stdout.
  verb.Text("--type", "EXT", options.type, {}, "the same as --format").Hidden().Excludes(format);
}

Option AddAngle(Verb& verb, PictureOptions& options) {
  return verb.Real("--angle", "A", options.angle, CheckAngle,
                   "turn by A degrees; positive is counter-clockwise");
}

void AddCorners(Verb& verb, PictureOptions& options) {
  verb.Text("--fill", "COLOR|WORD", options.fill, CheckFill,
            "what stands in uncovered corners: a color, transparent, nodata (the number that means "
            "no data), edge (the nearest pixel), or auto (what the picture can hold) [the color of "
            "--background if given, else nodata if the picture states such a number, else NaN in "
            "grids of floats, else white]")
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

void AddStretch(Verb& verb, PictureOptions& options) {
  const auto take = [&options](const std::string& text) {
    options.stretch = ParseStretch(text).value();
  };
  verb.Parsed("--stretch", "HOW", take, CheckStretch,
              "how numbers of more than 8 bits become 8 bits where they must: minmax (the least is "
              "black, the greatest white), percent P (without the lowest and highest P percent), "
              "fixed A,B (A is black, B white) or full (the range of the number type) [minmax for "
              "one band, full for colors]")
      .TakesWordAfter({"percent", "fixed"})
      .In(kPicture);
}

void AddQuality(Verb& verb, PictureOptions& options) {
  verb.Number("--quality", "Q", options.quality, {1, 100},
              "JPEG quality, 1 to 100 [that of a JPEG input, else 90]")
      .In(kPicture);
}

void AddPngLevel(Verb& verb, PictureOptions& options) {
  verb.Number("--png-level", "N", options.pngLevel, {0, 12},
              "packing of PNG files: 0 (none, large) to 12 (smallest, slow) [chosen for speed]")
      .In(kPicture);
}

void AddSampling(Verb& verb, PictureOptions& options) {
  const auto take = [&options](detail::Sampling sampling) {
    options.chromaX = sampling.x;
    options.chromaY = sampling.y;
  };
  AddWord(verb, "--sampling", "S", detail::kSamplingWords, take,
          "sampling of JPEG colors: 4:4:4 (full), 4:2:2, 4:2:0, 4:4:0 or 4:1:1 [that of a JPEG "
          "input, else 4:2:0, and 4:4:4 above quality 90]")
      .In(kPicture);
}

void AddLossless(Verb& verb, PictureOptions& options) {
  const auto take = [&options](Lossless lossless) { options.lossless = lossless; };
  AddWord(verb, "--lossless", "HOW", detail::kLosslessWords, take,
          "JPEG files are turned, mirrored and cropped without compressing them again: exact "
          "(where no pixel has to be dropped for it), trim (always; up to a block of pixels is "
          "dropped at the left or top edge) or off (never) [exact]")
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
  const auto take = [&options](TiffCompression compression) { options.compression = compression; };
  AddWord(verb, "--compression", "NAME", detail::kCompressionWords, take,
          "compression of TIFF files: none, lzw, deflate, packbits or g4 (1-bit only) "
          "[that of a TIFF input, else lzw, or g4 for 1-bit pictures]")
      .In(kPicture);
}

void AddPages(Verb& verb, PictureOptions& options) {
  if (options.onlyThisPage) {
    verb.Text("--page", "LIST", options.pages, CheckPages,
              "the page of a TIFF file, counted from 1, or last; several (1-3,7 or all) need "
              "--out-dir, where each gets a file [1]");
    return;
  }
  verb.Text(
      "--page", "LIST", options.pages, CheckPages,
      "pages of a TIFF file that are changed, counted from 1: 3, or 1-3,7 or 5-, or last, or "
      "all; a TIFF output keeps the other pages as they are, but --strip and --strip-gps reach all "
      "[1]");
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

void AddFlow(Verb& verb, PictureOptions& options) {
  verb.Text("--scratch", "DIR", options.scratch, CheckFolder,
            "folder of the scratch file that some changes of a large picture need; it has no name "
            "and never stays [the folder of the output]")
      .In(kFiles);
  verb.Number("--band-rows", "N", options.bandRows, {0, kMostBandRows},
              "rows that pass through the steps at a time; 0 chooses by their size")
      .Hidden();
}

}  // namespace rasterkit::tool
