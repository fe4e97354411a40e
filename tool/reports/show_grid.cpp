#include "tool/reports/show_grid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include <fmt/core.h>

#include "tool/command/exit_code.h"
#include "tool/command/json.h"
#include "tool/command/printable.h"
#include "tool/reports/geo_json.h"
#include "tool/reports/geo_text.h"

namespace rasterkit::tool {
namespace {

// ---- JSON -------------------------------------------------------------------------------------

/// JSON has no infinity and no NaN: they become text.
Json NumberJson(const GridNumber& number) {
  const auto* const value = std::get_if<double>(&number);
  if (value != nullptr && !std::isfinite(*value)) return fmt::format("{}", *value);
  return std::visit([](auto exact) { return Json(exact); }, number);
}

/// Columns and rows are integers, but those of a far map point may not fit into one.
Json PixelJson(const std::optional<MapPoint>& pixel) {
  constexpr double kLargest = 9e15;
  if (!pixel) return {};
  if (std::abs(pixel->x) > kLargest || std::abs(pixel->y) > kLargest) {
    return std::array{pixel->x, pixel->y};
  }
  return std::array{static_cast<int64_t>(pixel->x), static_cast<int64_t>(pixel->y)};
}

Json MapJson(const std::optional<MapPoint>& point) {
  return point ? Json(std::array{point->x, point->y}) : Json();
}

Json AnswersJson(const std::vector<GridAnswer>& answers) {
  JsonList list;
  for (const GridAnswer& answer : answers) {
    JsonObject item;
    item.Add("pixel", PixelJson(answer.pixel))
        .Add("map", MapJson(answer.map))
        .Add("value", answer.values.empty() ? Json() : NumberJson(answer.values.front()))
        .Add("nodata", answer.isNoData);
    if (answer.values.size() > 1) {
      JsonList values;
      for (const GridNumber& value : answer.values) values.Add(NumberJson(value));
      item.Add("values", values);
    }
    list.Add(item);
  }
  return list;
}

JsonObject StatisticsJson(const GridStatistics& statistics) {
  const bool hasValues = statistics.values > 0;
  JsonObject object;
  object.Add("minimum", hasValues ? NumberJson(statistics.least) : Json());
  object.Add("maximum", hasValues ? NumberJson(statistics.greatest) : Json());
  object.Add("mean", hasValues ? Json(statistics.mean) : Json());
  object.Add("values", statistics.values);
  object.Add("nodata_values", statistics.noData);
  object.Add("not_finite_values", statistics.notFinite);
  return object;
}

Json BandsJson(const GridReport& report) {
  JsonList list;
  for (const GridStatistics& statistics : report.statistics) list.Add(StatisticsJson(statistics));
  return list;
}

JsonObject GridJson(const GridReport& report) {
  JsonObject line;
  line.Add("grid", GridTypeName(report.file.grid->Type()));
  line.Add("width", report.file.grid->Width());
  line.Add("height", report.file.grid->Height());
  line.Add("samples", report.file.facts.samples);
  line.Add("pages", report.file.facts.pages);
  line.Add(StatisticsJson(report.statistics.front()));
  if (report.statistics.size() > 1) line.Add("bands", BandsJson(report));
  line.Add("nodata", TextOrNull(report.file.facts.noData));
  line.Add("geo", GeoJson(report.file.positions));
  line.Add("at", AnswersJson(report.answers));
  line.Add("warnings", report.file.warnings);
  return line;
}

void PrintJson(const std::string& file, const std::string& error, const JsonObject& rest) {
  JsonObject line;
  line.Add("schema", 1)
      .Add("file", file)
      .Add("ok", error.empty())
      .Add("error", TextOrNull(error))
      .Add(rest);
  PrintLine(line);
}

// ---- text -------------------------------------------------------------------------------------

/// The shortest text that identifies the value among those of its type.
std::string ValueText(const Grid& grid, const GridNumber& number) {
  if (grid.Type() == GridType::float32) {
    return fmt::format("{}", static_cast<float>(std::get<double>(number)));
  }
  return std::visit([](auto value) { return fmt::format("{}", value); }, number);
}

void PrintAnswer(const Grid& grid, const GridAnswer& answer) {
  fmt::print("  at");
  if (answer.pixel) fmt::print(" {},{}", answer.pixel->x, answer.pixel->y);
  if (answer.map) fmt::print(" (map {},{})", answer.map->x, answer.map->y);
  if (answer.values.empty()) {
    fmt::print(": outside\n");
    return;
  }
  for (size_t i = 0; i < answer.values.size(); ++i) {
    fmt::print("{}{}", i == 0 ? ": " : " | ", ValueText(grid, answer.values[i]));
  }
  fmt::print("{}\n", answer.isNoData ? ", no data" : "");
}

void PrintStatistics(const GridReport& report, const GridStatistics& statistics) {
  const Grid& grid = *report.file.grid;
  if (statistics.values > 0) {
    fmt::print("  minimum {}, maximum {}, mean {:.10g}\n", ValueText(grid, statistics.least),
               ValueText(grid, statistics.greatest), statistics.mean);
  }
  fmt::print("  {} values", statistics.values);
  if (statistics.noData > 0) fmt::print(", {} without data", statistics.noData);
  if (statistics.notFinite > 0) fmt::print(", {} not finite", statistics.notFinite);
  const std::string& noData = report.file.facts.noData;
  if (!noData.empty()) fmt::print("; no data is {}", Printable(noData));
  fmt::print("\n");
}

void PrintText(const std::string& name, const GridReport& report) {
  const TiffFacts& facts = report.file.facts;
  const Grid& grid = *report.file.grid;
  fmt::print("{}: grid of {} x {}, {}", OnOneLine(name), grid.Width(), grid.Height(),
             GridTypeName(grid.Type()));
  if (grid.Bands() > 1) fmt::print(", {} bands", grid.Bands());
  if (facts.pages > 1) fmt::print(", first of {} pages", facts.pages);
  fmt::print("\n");
  for (size_t i = 0; i < report.statistics.size(); ++i) {
    if (grid.Bands() > 1) fmt::print("  band {}:\n", i + 1);
    PrintStatistics(report, report.statistics[i]);
  }
  for (const StatedPosition& position : report.file.positions) {
    fmt::print("  {}\n", PositionText(position));
  }
  if (report.file.positions.empty()) fmt::print("  no position on a map\n");
  for (const GridAnswer& answer : report.answers) PrintAnswer(grid, answer);
}

// ---- report -----------------------------------------------------------------------------------

int SayNoGrid(const GridQuestions& questions, const TiffFacts& facts) {
  if (questions.json) {
    PrintJson(questions.file, "", JsonObject().Add("grid", "none"));
  } else {
    const std::string found =
        facts.width == 0
            ? "neither a TIFF nor a JPEG 2000 file; to place a picture on a map, add an output"
            : SamplesText(facts);
    fmt::print("{}: no grid of numbers ({})\n", OnOneLine(questions.file), found);
  }
  return exitAnswerIsNo;
}

int Show(const GridQuestions& questions) {
  const GridReport report = MakeGridReport(questions);
  for (const std::string& warning : report.file.warnings) {
    PrintMessage(questions.file + ": warning: " + warning);
  }
  if (!report.file.grid) return SayNoGrid(questions, report.file.facts);
  if (questions.json) {
    PrintJson(questions.file, "", GridJson(report));
  } else {
    PrintText(questions.file, report);
  }
  const auto isOutside = [](const GridAnswer& answer) { return answer.values.empty(); };
  return std::any_of(report.answers.begin(), report.answers.end(), isOutside) ? exitAnswerIsNo
                                                                              : exitDone;
}

}  // namespace

int ShowGrid(const GridQuestions& questions) {
  try {
    return Show(questions);
  } catch (const Failure& failure) {
    if (questions.json) PrintJson(questions.file, failure.what(), {});
    throw;
  }
}

}  // namespace rasterkit::tool
