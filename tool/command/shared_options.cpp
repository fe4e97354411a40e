#include "tool/command/shared_options.h"

#include <cmath>

#include <rasterkit/pictures/reading/picture_size.h>

#include "tool/arguments/color_argument.h"
#include "tool/arguments/size_argument.h"

namespace rasterkit::tool {
namespace {

/// Sections of the help.
constexpr const char* kFiles = "Files and results";
constexpr const char* kPicture = "Output picture";

std::string CheckBackground(const std::string& text) {
  return text == "auto" ? std::string() : CheckColor(text);
}

std::string CheckAngle(const std::string& text) {
  const auto angle = ReadReal(text);
  const bool ok = angle && std::isfinite(*angle) && std::isfinite(static_cast<float>(*angle));
  return ok ? std::string() : "an angle is a number of degrees, not '" + text + "'";
}

std::string CheckDpi(const std::string& text) {
  const auto dpi = ReadReal(text);
  const bool ok = dpi && *dpi >= 1 && *dpi <= 100000;
  return ok ? std::string() : "a resolution is 1 to 100000 pixels per inch, not '" + text + "'";
}

void AddThreadsFor(const std::string& work, Verb& verb, PictureOptions& options) {
  verb.Number("--threads", "N", options.threads, {1, 100},
              "threads " + work + ", 1 to 100 [one per processor]")
      .In(kPicture);
}

}  // namespace

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
  if (options.takesInPlace) {
    verb.Flag("--in-place", options.inPlace,
              "write each input over itself; all files are inputs, and no output is given")
        .In(kFiles);
  }
  verb.Flag("--no-sync", options.noSync,
            "do not wait until outputs are on the disk; a power failure can lose them")
      .In(kFiles);
  verb.Flag("--strict", options.strict, "exit with code 5 if something was not carried over")
      .In(kFiles);
  verb.Flag("--json", options.json, "print one JSON object per picture on stdout").In(kFiles);
  verb.Flag("-q", "--quiet", options.quiet,
            "print no warnings and notes, and no progress; losses and errors are still printed")
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

void AddBackground(Verb& verb, PictureOptions& options) {
  verb.Text("--background", "COLOR", options.background, CheckBackground,
            "color of uncovered corners, behind dropped transparency and behind metafiles "
            "[FFFFFF]; auto makes the corners transparent")
      .In(kPicture);
}

void AddSolidBackground(Verb& verb, PictureOptions& options) {
  verb.Text("--background", "COLOR", options.background, CheckColor,
            "color behind dropped transparency and behind metafiles [FFFFFF]")
      .In(kPicture);
}

void AddBits(Verb& verb, PictureOptions& options) {
  verb.OneOf("--bits", "N", options.bits, {1, 4, 8, 15, 16, 24, 32},
             "bits per pixel: 1, 4, 8, 15, 16, 24 or 32 [as in the input]")
      .In(kPicture);
}

void AddQuality(Verb& verb, PictureOptions& options) {
  verb.Number("--quality", "Q", options.quality, {1, 100}, "JPEG quality, 1 to 100 [90]")
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
              "[standard: lzw, or g4 for 1-bit pictures]")
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
  AddThreadsFor("for one picture", verb, options);
}

void AddFileThreads(Verb& verb, PictureOptions& options) {
  AddThreadsFor("for the compression of TIFF files", verb, options);
}

}  // namespace rasterkit::tool
