#include <cmath>
#include <limits>
#include <memory>

#include "apps/rasterkit/numbers.h"
#include "apps/rasterkit/show_grid.h"
#include "apps/rasterkit/verbs.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

struct GeoTiffOptions {
  std::string file;
  /// As typed; checked by then.
  std::vector<std::string> at, atMap;
  bool json = false;
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

int Ask(const GeoTiffOptions& options) {
  GridQuestions questions;
  questions.file = options.file;
  questions.json = options.json;
  for (const std::string& text : options.at) questions.pixels.push_back(PointOf(text));
  for (const std::string& text : options.atMap) questions.mapPoints.push_back(PointOf(text));
  return ShowGrid(questions);
}

}  // namespace

VerbRunner AddGeoTiffVerb(CLI::App& app) {
  CLI::App& verb = *app.add_subcommand("geotiff", "show what a grid of numbers holds");
  verb.group("Verbs");
  verb.footer(
      "Exit code 1 when the file holds no grid or a point lies outside.\n\n"
      "Example:\n"
      "  rasterkit geotiff terrain.tif --at 10,20 --at-map 4468012.5,5333980");
  const auto options = std::make_shared<GeoTiffOptions>();
  verb.add_option("file", options->file, "the grid")->required()->type_name("IN");
  verb.add_flag("--json", options->json, "print one JSON object on stdout");
  AddQuestions(verb, *options);
  return [options] { return Ask(*options); };
}

}  // namespace rasterkit::tool
