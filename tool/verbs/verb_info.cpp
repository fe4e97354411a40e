#include <algorithm>
#include <cstdio>
#include <memory>

#include <fmt/format.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/printable.h"
#include "tool/reports/geo_json.h"
#include "tool/reports/geo_text.h"
#include "tool/reports/picture_facts.h"
#include "tool/reports/tiff_report.h"
#include "tool/verbs/verbs.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace rasterkit::tool {
namespace {

using Json = nlohmann::ordered_json;

/// `value` for a picture that was read, else null.
template <class T>
Json IfRead(const PictureFacts& facts, const T& value) {
  return facts.error.empty() && !facts.pdf ? Json(value) : Json();
}

Json PagesJson(const PictureFacts& facts) {
  if (!facts.pdf) return IfRead(facts, facts.pages);
  return facts.pdf->pages ? Json(*facts.pdf->pages) : Json();
}

constexpr double kHundredths = 100;

Json TextOrNull(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

Json MetafileJson(const MetafileFacts& facts) {
  Json json;
  json["placeable"] = facts.kind == MetafileKind::placeableWmf;
  json["width_mm"] = facts.widthMm100 / kHundredths;
  json["height_mm"] = facts.heightMm100 / kHundredths;
  json["records"] = facts.records;
  json["emf_plus"] = facts.isEmfPlusOnly ? "only" : facts.hasEmfPlus ? "beside" : "none";
  json["program"] = TextOrNull(facts.program);
  json["title"] = TextOrNull(facts.title);
  return json;
}

Json FactsJson(const PictureFacts& facts) {
  Json line;
  line["schema"] = 1;
  line["file"] = facts.file;
  line["ok"] = facts.error.empty();
  line["error"] = facts.error.empty() ? Json() : Json(facts.error);
  line["type"] = facts.type.empty() ? Json() : Json(facts.type);
  line["width"] = IfRead(facts, facts.width);
  line["height"] = IfRead(facts, facts.height);
  line["bits"] = IfRead(facts, facts.bits);
  line["palette_entries"] = IfRead(facts, facts.paletteEntries);
  line["transparent"] = IfRead(facts, facts.transparent);
  line["dpi"] = facts.dpi ? Json(*facts.dpi) : Json();
  line["orientation"] = facts.photo.orientation ? Json(*facts.photo.orientation) : Json();
  line["rotation"] = facts.photo.rotation ? Json(*facts.photo.rotation) : Json();
  line["gps"] = GpsJson(facts.photo.gps);
  line["geo"] = GeoJson(facts.positions);
  line["grid"] = IfRead(facts, facts.grid);
  line["pages"] = PagesJson(facts);
  line["tiff"] = facts.tiff ? TiffJson(*facts.tiff) : Json();
  line["metafile"] = facts.metafile ? MetafileJson(*facts.metafile) : Json();
  line["bytes"] = facts.bytes;
  line["metadata"] = facts.metadata;
  line["warnings"] = facts.warnings;
  return line;
}

void PrintGrid(const PictureFacts& facts) {
  const std::string noData = facts.tiff ? facts.tiff->noData : std::string();
  fmt::print("  grid of {} numbers{}\n", facts.grid,
             noData.empty() ? noData : ", no data is " + Printable(noData));
}

void PrintOrientation(const PictureFacts& facts) {
  fmt::print("  orientation {}", *facts.photo.orientation);
  if (facts.type == "jpeg") fmt::print(", rotation {}", facts.photo.rotation.value_or(0));
  fmt::print("\n");
}

/// Ground control points: they tie pixels to the map, but give them no size.
void PrintLooseTiePoints(const PictureFacts& facts) {
  const size_t points = facts.tiff ? facts.tiff->tiePoints.size() / 6 : 0;
  const bool isPlaced = std::any_of(facts.positions.begin(), facts.positions.end(),
                                    [](const GeoPosition& p) { return p.file.empty(); });
  if (points > 0 && !isPlaced) fmt::print("  {} tie points without a pixel size\n", points);
}

void PrintPdf(const PictureFacts& facts) {
  constexpr double millimetresPerPoint = 25.4 / 72;
  fmt::print("{}: pdf", facts.file);
  if (const auto pages = facts.pdf->pages)
    fmt::print(", {} page{}", *pages, *pages == 1 ? "" : "s");
  if (const auto& page = facts.pdf->firstPage)
    fmt::print(", the first {:.1f} x {:.1f} mm", page->width * millimetresPerPoint,
               page->height * millimetresPerPoint);
  fmt::print(", {} bytes\n", facts.bytes);
}

void PrintMetafile(const PictureFacts& facts) {
  const MetafileFacts& metafile = *facts.metafile;
  const bool isPlaceable = metafile.kind == MetafileKind::placeableWmf;
  fmt::print("{}: {}{}, {:.1f} x {:.1f} mm, {} x {} pixels at 96 dpi, {} records, {} bytes\n",
             facts.file, isPlaceable ? "placeable " : "", facts.type,
             metafile.widthMm100 / kHundredths, metafile.heightMm100 / kHundredths, facts.width,
             facts.height, metafile.records, facts.bytes);
  if (!metafile.title.empty()) fmt::print("  title: {}\n", Printable(metafile.title));
  if (!metafile.program.empty()) fmt::print("  written by {}\n", Printable(metafile.program));
  if (metafile.hasEmfPlus) fmt::print("  EMF+ records beside the plain ones, which are drawn\n");
}

void PrintText(const PictureFacts& facts) {
  if (facts.pdf) return PrintPdf(facts);
  if (facts.metafile) return PrintMetafile(facts);
  fmt::print("{}: {}, {} x {} pixels, {} bit{}", facts.file, facts.type, facts.width, facts.height,
             facts.bits, facts.bits == 1 ? "" : "s");
  if (facts.paletteEntries > 0) fmt::print(", {} palette entries", facts.paletteEntries);
  if (facts.transparent) fmt::print(", transparent");
  if (facts.pages > 1 && !facts.tiff) fmt::print(", {} pictures", facts.pages);
  if (facts.dpi) fmt::print(", {:.5g} x {:.5g} dpi", (*facts.dpi)[0], (*facts.dpi)[1]);
  fmt::print(", {} bytes\n", facts.bytes);
  if (facts.tiff) fmt::print("  {}\n", TiffText(*facts.tiff));
  if (facts.grid != "none") PrintGrid(facts);
  if (facts.photo.orientation) PrintOrientation(facts);
  if (const auto& gps = facts.photo.gps) {
    fmt::print("  GPS {:.6f}, {:.6f}", gps->latitude, gps->longitude);
    if (gps->altitude) fmt::print(", {:.1f} m", *gps->altitude);
    fmt::print("\n");
  }
  for (const GeoPosition& position : facts.positions) fmt::print("  {}\n", PositionText(position));
  PrintLooseTiePoints(facts);
  if (!facts.metadata.empty()) fmt::print("  metadata: {}\n", fmt::join(facts.metadata, ", "));
}

void PrintFacts(const PictureFacts& facts, bool json) {
  if (json) {
    fmt::print("{}\n",
               FactsJson(facts).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
  } else if (facts.error.empty()) {
    PrintText(facts);
  }
  for (const std::string& warning : facts.warnings)
    fmt::print(stderr, "rasterkit: {}: warning: {}\n", facts.file, warning);
  if (!facts.error.empty()) fmt::print(stderr, "rasterkit: {}: {}\n", facts.file, facts.error);
  std::fflush(stdout);
}

}  // namespace

VerbRunner AddInfoVerb(CLI::App& app) {
  CLI::App& verb = *app.add_subcommand("info", "say what a file holds");
  verb.group("Verbs");
  verb.footer(
      "The type is told by content, whatever the file is called. Every picture is decoded, so that "
      "ok means\n"
      "that it can be read.\n\n"
      "Examples:\n"
      "  rasterkit info photo.jpg\n"
      "  rasterkit info --json *.png | jq .width");
  const auto files = std::make_shared<std::vector<std::string>>();
  const auto json = std::make_shared<bool>(false);
  verb.add_option("files", *files, "files to look at")->required()->type_name("IN...");
  verb.add_flag("--json", *json, "print one JSON object a file, one line each");
  return [files, json] {
    ExitCode code = exitDone;
    for (const std::string& file : *files) {
      StopIfInterrupted();
      const PictureFacts facts = GatherFacts(file);
      PrintFacts(facts, *json);
      if (!facts.error.empty()) code = exitInputUnreadable;
    }
    return code;
  };
}

}  // namespace rasterkit::tool
