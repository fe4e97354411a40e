#include "tool/command/output_options.h"

#include <cctype>
#include <cmath>
#include <utility>

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

/// Titles in the help, behind the verb's own options.
constexpr const char* kOfFiles = "Files and results";
constexpr const char* kOfPicture = "Output picture";

std::string CheckBackground(const std::string& text) {
  const bool ok = text == "auto" || CheckColor(text).empty();
  return ok ? std::string()
            : "a colour is six hexadecimal digits RRGGBB, or auto, not '" + text + "'";
}

std::string CheckAngle(const std::string& text) {
  double angle = 0;
  const bool ok = CLI::detail::lexical_cast(text, angle) && std::isfinite(angle) &&
                  std::isfinite(static_cast<float>(angle));
  return ok ? std::string() : "an angle is a number of degrees, not '" + text + "'";
}

std::vector<std::string> Names(
    const std::vector<std::pair<std::string, TiffCompression>>& compressions) {
  std::vector<std::string> names;
  names.reserve(compressions.size());
  for (const auto& [name, compression] : compressions) names.push_back(name);
  return names;
}

void AddThreadsFor(const std::string& work, CLI::App& verb, PictureOptions& options) {
  verb.add_option("--threads", options.threads,
                  "threads for " + work + ", 1 to 100 [one a processor]")
      ->group(kOfPicture)
      ->check(CLI::Range(1, 100))
      ->type_name("N");
}

}  // namespace

void AddOutputOptions(CLI::App& verb, OutputOptions& options) {
  verb.add_option("files", options.files,
                  "one input, then the output; with --out-dir any number of inputs and no output")
      ->required()
      ->type_name("IN OUT");
  verb.add_option("--out-dir", options.outDir,
                  "write each picture into this folder (made if absent)")
      ->group(kOfFiles)
      ->type_name("DIR");
  verb.add_option("--jobs", options.jobs, "pictures worked on at the same time, 1 to 64 [1]")
      ->group(kOfFiles)
      ->check(CLI::Range(1, 64))
      ->type_name("N");
  verb.add_flag("--continue", options.keepGoing, "go on with the next picture after a failure")
      ->group(kOfFiles);
  verb.add_flag("--overwrite", options.overwrite, "replace existing outputs")->group(kOfFiles);
  verb.add_flag("--strict", options.strict, "exit 5 when something was not carried over")
      ->group(kOfFiles);
  verb.add_flag("--json", options.json, "print one JSON object a picture on stdout")
      ->group(kOfFiles);
}

void AddType(CLI::App& verb, OutputOptions& options) {
  verb.add_option("--type", options.type,
                  options.takesMetafiles
                      ? "with --out-dir: bmp, jpg, png, tif, or of metafiles emf or wmf [as each "
                        "input is called]"
                      : "with --out-dir: bmp, jpg, png or tif [as each input is called]")
      ->group(kOfFiles)
      ->type_name("EXT");
}

void AddAngle(CLI::App& verb, PictureOptions& options, bool required) {
  verb.add_option("--angle", options.angle, "turn by degrees, positive counter-clockwise")
      ->check(CheckAngle)
      ->required(required)
      ->type_name("A");
}

void AddBackground(CLI::App& verb, PictureOptions& options) {
  verb.add_option(
          "--background", options.background,
          "colour of uncovered corners, behind dropped transparency and behind metafiles [FFFFFF]; "
          "auto marks the corners transparent")
      ->group(kOfPicture)
      ->check(CheckBackground)
      ->type_name("RRGGBB");
}

void AddSolidBackground(CLI::App& verb, PictureOptions& options) {
  verb.add_option("--background", options.background,
                  "colour behind dropped transparency and behind metafiles [FFFFFF]")
      ->group(kOfPicture)
      ->check(CheckColor)
      ->type_name("RRGGBB");
}

void AddBits(CLI::App& verb, PictureOptions& options) {
  verb.add_option("--bits", options.bits, "bits a pixel: 1, 4, 8, 15, 16, 24 or 32 [as the input]")
      ->group(kOfPicture)
      ->check(CLI::IsMember({1, 4, 8, 15, 16, 24, 32}))
      ->type_name("N");
}

void AddQuality(CLI::App& verb, PictureOptions& options) {
  verb.add_option("--quality", options.quality, "JPEG quality, 1 to 100 [90]")
      ->group(kOfPicture)
      ->check(CLI::Range(1, 100))
      ->type_name("Q");
}

void AddCompression(CLI::App& verb, PictureOptions& options) {
  static const std::vector<std::pair<std::string, TiffCompression>> names = {
      {"standard", TiffCompression::standard}, {"none", TiffCompression::none},
      {"lzw", TiffCompression::lzw},           {"deflate", TiffCompression::deflate},
      {"packbits", TiffCompression::packBits}, {"g4", TiffCompression::group4}};
  verb.add_option_function<std::string>(
          "--compression",
          [&options](const std::string& text) {
            for (const auto& [name, compression] : names)
              if (name == text) options.compression = compression;
          },
          "of TIFF: none, lzw, deflate, packbits, g4 (1-bit only) [standard: lzw, 1-bit g4]")
      ->group(kOfPicture)
      ->check(CLI::IsMember(Names(names)))
      ->type_name("NAME");
}

void AddMetafileSize(CLI::App& verb, PictureOptions& options) {
  const auto check = [](const std::string& text) {
    double dpi = 0;
    const bool ok = CLI::detail::lexical_cast(text, dpi) && dpi >= 1 && dpi <= 100000;
    return ok ? std::string() : "pixels an inch are 1 to 100000, not '" + text + "'";
  };
  auto* dpi = verb.add_option("--dpi", options.metafile.dpi, "of a metafile: pixels an inch [96]")
                  ->group(kOfPicture)
                  ->check(check)
                  ->type_name("N");
  verb.add_option_function<std::string>(
          "--size",
          [&options](const std::string& text) { options.metafile.size = *ParseSize(text); },
          "of a metafile: pixels it is drawn with, WxH, or one side alone (Wx, xH)")
      ->group(kOfPicture)
      ->check(CheckSize)
      ->excludes(dpi)
      ->type_name("WxH");
}

void AddThreads(CLI::App& verb, PictureOptions& options) {
  AddThreadsFor("one picture", verb, options);
}

void AddFileThreads(CLI::App& verb, PictureOptions& options) {
  AddThreadsFor("packing and unpacking a TIFF file", verb, options);
}

std::string CheckColor(const std::string& text) {
  bool ok = text.size() == 6;
  for (const char c : text) ok = ok && std::isxdigit(static_cast<unsigned char>(c)) != 0;
  return ok ? std::string() : "a colour is six hexadecimal digits RRGGBB, not '" + text + "'";
}

TColor ColorOf(const std::string& digits) {
  const unsigned long rgb = std::stoul(digits, nullptr, 16);
  return RGB(static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8),
             static_cast<uint8_t>(rgb));
}

}  // namespace rasterkit::tool
