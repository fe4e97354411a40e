#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <rasterkit/placement/fit_points.h>
#include <rasterkit/runtime/errors.h>

#include "tool/arguments/numbers.h"
#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/output_options.h"
#include "tool/command/shared_options.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/placement/write_geotiff.h"
#include "tool/pictures/recorder.h"
#include "tool/reports/show_grid.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

struct GeoTiffOptions {
  OutputOptions output;
  /// Its strips alone.
  PictureOptions picture;
  /// Values as typed, already checked.
  std::string origin, pixelSize, worldFile;
  std::vector<std::string> points, at, atMap;

  bool GivesPosition() const {
    return !origin.empty() || !pixelSize.empty() || !points.empty() || !worldFile.empty();
  }
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

/// COLUMN,ROW=X,Y
std::optional<ControlPoint> ParseControlPoint(const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos) return std::nullopt;
  const auto pixel = ParseNumbers(text.substr(0, equals)),
             place = ParseNumbers(text.substr(equals + 1));
  if (!pixel || !place || pixel->size() != 2 || place->size() != 2) return std::nullopt;
  ControlPoint point;
  point.column = pixel->front();
  point.row = pixel->back();
  point.x = place->front();
  point.y = place->back();
  return point;
}

std::string CheckControlPoint(const std::string& text) {
  if (ParseControlPoint(text)) return {};
  return "a point is COLUMN,ROW=X,Y, four numbers, not '" + text + "'";
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
  const Option point =
      verb.Texts("--point", "COLUMN,ROW=X,Y", options.points, CheckControlPoint,
                 "the place X,Y on the map of a place in the picture; COLUMN and ROW count from "
                 "the top left corner of the picture, so that the center of its first pixel is "
                 "0.5,0.5. Can be repeated: two points give size, turn and shift, three or more "
                 "the position with the least squares; one requires --pixel-size");
  point.Excludes(origin);
  verb.Text("--world-file", "FILE", options.worldFile, {},
            "read the position from this file [the world file beside the input]")
      .Excludes(origin)
      .Excludes(size)
      .Excludes(point);
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
  if (options.GivesPosition() || !options.output.record.empty()) {
    throw Failure(exitWrongUsage, options.GivesPosition() ? "a position requires an output"
                                                          : "--record requires an output");
  }
  GridQuestions questions;
  questions.file = options.output.files[0];
  questions.json = options.output.json;
  for (const std::string& text : options.at) questions.pixels.push_back(PointOf(text));
  for (const std::string& text : options.atMap) questions.mapPoints.push_back(PointOf(text));
  return ShowGrid(questions);
}

PlacementOptions PlacementByPoints(const GeoTiffOptions& options) {
  PlacementOptions placement;
  PlacedByPoints placed;
  for (const std::string& text : options.points) {
    placed.points.push_back(ParseControlPoint(text).value());
  }
  try {
    if (options.pixelSize.empty()) {
      placed.fit = FitAffine(placed.points);
      placement.given = placed.fit.affine;
      placement.placedBy = std::move(placed);
    } else if (placed.points.size() == 1) {
      placement.given = PlaceByPoint(placed.points.front(), PointOf(options.pixelSize));
    } else {
      throw Failure(exitWrongUsage,
                    "several points give the size of a pixel; without --pixel-size");
    }
  } catch (const RangeError& error) {
    const bool isOne = placed.points.size() == 1;
    throw Failure(exitWrongUsage, isOne ? "one --point requires another one or --pixel-size"
                                        : "--point: " + error.Reason());
  }
  return placement;
}

PlacementOptions PlacementOf(const GeoTiffOptions& options) {
  if (!options.points.empty()) return PlacementByPoints(options);
  PlacementOptions placement;
  placement.worldFile = options.worldFile;
  if (options.origin.empty()) {
    if (!options.pixelSize.empty()) {
      throw Failure(exitWrongUsage, "--pixel-size requires --origin or one --point");
    }
    return placement;
  }
  // After the check of options that exclude each other, so that this is not said of --point.
  if (options.pixelSize.empty()) {
    throw Failure(exitWrongUsage, "--origin requires --pixel-size");
  }
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
  if (!options.worldFile.empty() && !options.output.record.empty()) {
    throw Failure(
        exitWrongUsage,
        "--record cannot be used with --world-file: a recipe names no files; --origin and "
        "--pixel-size state a position");
  }
  const bool isOnePosition = options.GivesPosition();
  const bool isStream = IsStandardStream(options.output.files.back());
  if (!options.output.outDir.empty() || isStream) options.output.type = "tif";
  if (isOnePosition && !options.output.outDir.empty() && options.output.files.size() > 1) {
    throw Failure(exitWrongUsage, "one position cannot be used for several pictures");
  }
  PlacementOptions placement = PlacementOf(options);
  placement.edit = options.picture.edit;
  const std::vector<Job> jobs = PlanJobs(options.output);
  StartRecording(options.output, options.picture, jobs);
  placement.recorder = options.picture.recorder;
  const int code =
      RunJobs(options.output, jobs, [&](const Job& job) { return WriteGeoTiff(job, placement); });
  return FinishRecording(options.output, options.picture, code);
}

}  // namespace

VerbRunner AddGeoTiffVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"geotiff",
       "write the map position, or show the values of a grid",
       {"With an output: writes the picture upright with its position on the map, in the tags of "
        "a TIFF file, or in a world file beside an output of another type. The position comes from "
        "--origin and --pixel-size or from --point, or else from a world file, or else from the "
        "tags of the input.",
        "With one file and no output: shows the grid of numbers in the file and the values at the "
        "given points. The exit code is 1 if the file has no grid or a point is outside it."},
       {"rasterkit geotiff plan.png plan.tif",
        "rasterkit geotiff scan.jpg scan.tif --origin 4468000,5334000 --pixel-size 0.05",
        "rasterkit geotiff scan.jpg scan.tif --point 120,80=4468000,5334000 "
        "--point 3900,95=4468190,5334001 --point 110,2800=4467998,5333864",
        "rasterkit geotiff terrain.tif --at 10,20 --at-map 4468012.5,5333980"}});
  const auto options = std::make_shared<GeoTiffOptions>();
  options->output.takesStreams = true;
  AddOutputOptions(verb, options->output, "IN [OUT]");
  AddRecord(verb, options->output.record);
  AddIsolate(verb);
  AddPositionOptions(verb, *options);
  AddQuestions(verb, *options);
  AddStrip(verb, options->picture);
  return [options] { return IsQuestion(*options) ? Ask(*options) : Write(*options); };
}

}  // namespace rasterkit::tool
