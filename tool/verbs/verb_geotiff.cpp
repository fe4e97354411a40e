#include <cmath>
#include <limits>
#include <memory>

#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

#include "tool/arguments/numbers.h"
#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/output_options.h"
#include "tool/command/shared_options.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/placement/write_geotiff.h"
#include "tool/reports/show_grid.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

struct GeoTiffOptions {
  OutputOptions output;
  /// Values as typed, already checked.
  std::string origin, pixelSize, worldFile;
  std::vector<std::string> at, atMap;
};

MapPoint PointOf(const std::string& text) {
  const std::vector<double> numbers = ParseNumbers(text).value();
  return {numbers.front(), numbers.back()};
}

std::string CheckPoint(const std::string& text) {
  const auto numbers = ParseNumbers(text);
  const bool ok = numbers && numbers->size() == 2;
  return ok ? std::string() : "a point is X,Y, two numbers, not '" + text + "'";
}

std::string CheckPixel(const std::string& text) {
  const auto isWhole = [](double n) {
    return n == std::trunc(n) && std::abs(n) <= std::numeric_limits<int>::max();
  };
  const bool ok = CheckPoint(text).empty() && isWhole(PointOf(text).x) && isWhole(PointOf(text).y);
  return ok ? std::string() : "a pixel is COLUMN,ROW, two whole numbers, not '" + text + "'";
}

std::string CheckPixelSize(const std::string& text) {
  const auto numbers = ParseNumbers(text);
  const bool ok = numbers && numbers->size() <= 2 && numbers->front() > 0 && numbers->back() > 0;
  return ok ? std::string()
            : "a pixel size is S or SX,SY, numbers above 0 (rows run south), not '" + text + "'";
}

void AddPositionOptions(Verb& verb, GeoTiffOptions& options) {
  const Option origin = verb.Text("--origin", "X,Y", options.origin, CheckPoint,
                                  "map position of the top left corner of the top left pixel");
  const Option size = verb.Text("--pixel-size", "S|SX,SY", options.pixelSize, CheckPixelSize,
                                "width and height of a pixel in map units");
  origin.Needs(size);
  size.Needs(origin);
  verb.Text("--world-file", "FILE", options.worldFile, {},
            "read the position from this file [the world file beside the input]")
      .Excludes(origin);
}

void AddQuestions(Verb& verb, GeoTiffOptions& options) {
  verb.Texts("--at", "COLUMN,ROW", options.at, CheckPixel,
             "show the value of a pixel, counted from 0,0; can be repeated");
  verb.Texts("--at-map", "X,Y", options.atMap, CheckPoint,
             "show the value at a map position; can be repeated");
}

/// True for one file and no output.
bool IsQuestion(const GeoTiffOptions& options) {
  return options.output.files.size() == 1 && options.output.outDir.empty();
}

int Ask(const GeoTiffOptions& options) {
  if (!options.origin.empty() || !options.worldFile.empty()) {
    throw Failure(exitWrongUsage, "a position requires an output");
  }
  GridQuestions questions;
  questions.file = options.output.files[0];
  questions.json = options.output.json;
  for (const std::string& text : options.at) questions.pixels.push_back(PointOf(text));
  for (const std::string& text : options.atMap) questions.mapPoints.push_back(PointOf(text));
  return ShowGrid(questions);
}

void RequireTiffNames(const std::vector<Job>& jobs) {
  for (const Job& job : jobs) {
    if (job.type == PictureType::tiff) continue;
    const std::string extension = UpperCase(ExtractFileExt(job.output));
    if (extension != ".TIF" && extension != ".TIFF") {
      throw Failure(exitWrongUsage,
                    job.output + ": a picture with a position must end in .tif or .tiff");
    }
  }
}

PlacementOptions PlacementOf(const GeoTiffOptions& options) {
  PlacementOptions placement;
  placement.worldFile = options.worldFile;
  if (options.origin.empty()) return placement;
  const MapPoint origin = PointOf(options.origin), size = PointOf(options.pixelSize);
  constexpr double kHalf = 0.5;
  placement.given =
      Affine{size.x, 0, 0, -size.y, origin.x + kHalf * size.x, origin.y - kHalf * size.y};
  return placement;
}

int Write(GeoTiffOptions options) {
  if (!options.at.empty() || !options.atMap.empty()) {
    throw Failure(exitWrongUsage, "--at and --at-map require one file and no output");
  }
  const bool isOnePosition = !options.origin.empty() || !options.worldFile.empty();
  const bool isStream = IsStandardStream(options.output.files.back());
  if (!options.output.outDir.empty() || isStream) options.output.type = "tif";
  if (isOnePosition && !options.output.outDir.empty() && options.output.files.size() > 1) {
    throw Failure(exitWrongUsage, "one position cannot be used for several pictures");
  }
  const std::vector<Job> jobs = PlanJobs(options.output);
  RequireTiffNames(jobs);
  const PlacementOptions placement = PlacementOf(options);
  return RunJobs(options.output, jobs,
                 [&](const Job& job) { return WriteGeoTiff(job, placement); });
}

}  // namespace

VerbRunner AddGeoTiffVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"geotiff",
       "write the map position, or show the values of a grid",
       {"With an output: writes the picture upright as a TIFF file with its position on the map. "
        "The position comes from --origin and --pixel-size, or else from a world file, or else "
        "from the tags of the input.",
        "With one file and no output: shows the grid of numbers in the file and the values at the "
        "given points. The exit code is 1 if the file has no grid or a point is outside it."},
       {"rasterkit geotiff plan.png plan.tif",
        "rasterkit geotiff scan.jpg scan.tif --origin 4468000,5334000 --pixel-size 0.05",
        "rasterkit geotiff terrain.tif --at 10,20 --at-map 4468012.5,5333980"}});
  const auto options = std::make_shared<GeoTiffOptions>();
  options->output.takesStreams = true;
  AddOutputOptions(verb, options->output, "IN [OUT]");
  AddIsolate(verb);
  AddPositionOptions(verb, *options);
  AddQuestions(verb, *options);
  return [options] { return IsQuestion(*options) ? Ask(*options) : Write(*options); };
}

}  // namespace rasterkit::tool
