#include <cmath>
#include <limits>
#include <memory>

#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

#include "tool/command/exit_code.h"
#include "tool/command/numbers.h"
#include "tool/command/output_options.h"
#include "tool/pictures/placement/write_geotiff.h"
#include "tool/reports/show_grid.h"
#include "tool/verbs/verbs.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

struct GeoTiffOptions {
  OutputOptions output;
  /// As typed; checked by then.
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
            : "a pixel size is S or SX,SY, above 0 (rows run south), not '" + text + "'";
}

void AddPositionOptions(CLI::App& verb, GeoTiffOptions& options) {
  auto* const origin =
      verb.add_option("--origin", options.origin,
                      "map position of the upper left corner of the upper left pixel")
          ->check(CheckPoint)
          ->type_name("X,Y");
  auto* const size =
      verb.add_option("--pixel-size", options.pixelSize, "width and height of a pixel in map units")
          ->check(CheckPixelSize)
          ->type_name("S|SX,SY");
  origin->needs(size);
  size->needs(origin);
  verb.add_option("--world-file", options.worldFile,
                  "take the position from this file [the one beside the input]")
      ->excludes(origin)
      ->type_name("FILE");
}

void AddQuestions(CLI::App& verb, GeoTiffOptions& options) {
  verb.add_option("--at", options.at, "the value of a pixel, counted from 0,0; repeatable")
      ->check(CheckPixel)
      ->allow_extra_args(false)
      ->type_name("COLUMN,ROW");
  verb.add_option("--at-map", options.atMap, "the value at a map position; repeatable")
      ->check(CheckPoint)
      ->allow_extra_args(false)
      ->type_name("X,Y");
}

/// One file and no place to write to.
bool IsQuestion(const GeoTiffOptions& options) {
  return options.output.files.size() == 1 && options.output.outDir.empty();
}

int Ask(const GeoTiffOptions& options) {
  if (!options.origin.empty() || !options.worldFile.empty())
    throw Failure(exitWrongUsage, "a position is given, but no output");
  GridQuestions questions;
  questions.file = options.output.files[0];
  questions.json = options.output.json;
  for (const std::string& text : options.at) questions.pixels.push_back(PointOf(text));
  for (const std::string& text : options.atMap) questions.mapPoints.push_back(PointOf(text));
  return ShowGrid(questions);
}

void RequireTiffNames(const std::vector<Job>& jobs) {
  for (const Job& job : jobs) {
    const std::string extension = UpperCase(ExtractFileExt(job.output));
    if (extension != ".TIF" && extension != ".TIFF")
      throw Failure(exitWrongUsage, job.output + ": positions are written into .tif and .tiff");
  }
}

PlacementOptions PlacementOf(const GeoTiffOptions& options) {
  PlacementOptions placement;
  placement.worldFile = options.worldFile;
  if (options.origin.empty()) return placement;
  const MapPoint origin = PointOf(options.origin), size = PointOf(options.pixelSize);
  placement.given = {origin.x, origin.y, size.x, size.y};
  return placement;
}

int Write(GeoTiffOptions options) {
  if (!options.at.empty() || !options.atMap.empty())
    throw Failure(exitWrongUsage, "--at and --at-map ask about one file that is there already");
  const bool isOnePosition = !options.origin.empty() || !options.worldFile.empty();
  if (!options.output.outDir.empty()) options.output.type = "tif";
  if (isOnePosition && !options.output.outDir.empty() && options.output.files.size() > 1)
    throw Failure(exitWrongUsage, "one position would place every picture at the same spot");
  const std::vector<Job> jobs = PlanJobs(options.output);
  RequireTiffNames(jobs);
  const PlacementOptions placement = PlacementOf(options);
  return RunJobs(options.output, jobs,
                 [&](const Job& job) { return WriteGeoTiff(job, placement); });
}

}  // namespace

VerbRunner AddGeoTiffVerb(CLI::App& app) {
  CLI::App& verb =
      *app.add_subcommand("geotiff", "write a picture with its map position; show a grid's values");
  verb.group("Verbs");
  verb.footer(
      "With an output: writes the picture upright as TIFF with its position on the map, from "
      "--origin and\n"
      "--pixel-size, else from a world file, else from the input's own tags. With one file alone: "
      "says what\n"
      "grid of numbers it holds; exit code 1 when it holds none or a point lies outside.\n\n"
      "Examples:\n"
      "  rasterkit geotiff plan.png plan.tif\n"
      "  rasterkit geotiff scan.jpg scan.tif --origin 4468000,5334000 --pixel-size 0.05\n"
      "  rasterkit geotiff terrain.tif --at 10,20 --at-map 4468012.5,5333980");
  const auto options = std::make_shared<GeoTiffOptions>();
  AddOutputOptions(verb, options->output);
  verb.get_option("files")->type_name("IN [OUT]");
  AddPositionOptions(verb, *options);
  AddQuestions(verb, *options);
  return [options] { return IsQuestion(*options) ? Ask(*options) : Write(*options); };
}

}  // namespace rasterkit::tool
