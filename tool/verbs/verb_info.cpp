#include <algorithm>
#include <cstdio>
#include <memory>

#include <fmt/format.h>

#include <rasterkit/runtime/worker/worker_slots.h>

#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/json.h"
#include "tool/command/printable.h"
#include "tool/reports/geo_json.h"
#include "tool/reports/geo_text.h"
#include "tool/reports/picture_facts.h"
#include "tool/reports/tiff_report.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

constexpr double kHundredths = 100;

/// `value` if the picture was read, else null.
Json IfRead(const PictureFacts& facts, const Json& value) {
  return facts.isKnown ? value : Json();
}

std::string SystemText(const CoordinateSystem& system) {
  const std::string text = OnOneLine(system.Description());
  return text.empty() ? "without a name" : text;
}

Json PagesJson(const PictureFacts& facts) {
  return facts.pdf ? Json(facts.pdf->pages) : IfRead(facts, facts.pages);
}

Json MetafileJson(const MetafileFacts& facts) {
  JsonObject json;
  json.Add("placeable", facts.kind == MetafileKind::placeableWmf);
  json.Add("width_mm", facts.widthMm100 / kHundredths);
  json.Add("height_mm", facts.heightMm100 / kHundredths);
  json.Add("records", facts.records);
  json.Add("emf_plus", facts.isEmfPlusOnly ? "only" : facts.hasEmfPlus ? "beside" : "none");
  json.Add("program", TextOrNull(facts.program));
  json.Add("title", TextOrNull(facts.title));
  return json;
}

Json FactsJson(const PictureFacts& facts) {
  JsonObject line;
  line.Add("schema", 1);
  line.Add("file", facts.file);
  line.Add("ok", facts.isKnown || facts.pdf.has_value());
  if (facts.verified) {
    line.Add("verified", *facts.verified);
    line.Add("damage", facts.damage);
  }
  line.Add("error", TextOrNull(facts.error));
  line.Add("type", TextOrNull(facts.type));
  line.Add("width", IfRead(facts, facts.width));
  line.Add("height", IfRead(facts, facts.height));
  line.Add("bits", IfRead(facts, facts.bits));
  line.Add("palette_entries", IfRead(facts, facts.paletteEntries));
  line.Add("transparent", IfRead(facts, facts.transparent));
  line.Add("dpi", facts.dpi);
  line.Add("orientation", facts.photo.orientation);
  line.Add("rotation", facts.photo.rotation);
  line.Add("gps", GpsJson(facts.photo.gps));
  line.Add("date", TextOrNull(facts.date));
  line.Add("make", TextOrNull(facts.make));
  line.Add("model", TextOrNull(facts.model));
  line.Add("geo", GeoJson(facts.placement.stated));
  line.Add("epsg", facts.placement.system.Epsg());
  line.Add("coordinate_system", TextOrNull(facts.placement.system.Name()));
  line.Add("grid", IfRead(facts, facts.grid));
  line.Add("pages", PagesJson(facts));
  line.Add("tiff", facts.tiff ? TiffJson(*facts.tiff) : Json());
  line.Add("metafile", facts.metafile ? MetafileJson(*facts.metafile) : Json());
  line.Add("bytes", facts.bytes);
  line.Add("metadata", facts.metadata);
  line.Add("warnings", facts.warnings);
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

void PrintPhotograph(const PictureFacts& facts) {
  if (facts.date.empty() && facts.make.empty() && facts.model.empty()) return;
  fmt::print("  photograph");
  if (!facts.date.empty()) fmt::print(" of {}", facts.date);
  const std::string camera = facts.make + (facts.make.empty() ? "" : " ") + facts.model;
  if (!camera.empty()) fmt::print(", {}", Printable(camera));
  fmt::print("\n");
}

/// Prints ground control points: they tie pixels to the map but define no pixel size.
void PrintLooseTiePoints(const PictureFacts& facts) {
  const size_t points = facts.tiff ? facts.tiff->tiePoints.size() / 6 : 0;
  const auto& stated = facts.placement.stated;
  const bool isPlaced = std::any_of(stated.begin(), stated.end(),
                                    [](const StatedPosition& p) { return p.file.empty(); });
  if (points > 0 && !isPlaced) fmt::print("  {} tie points without a pixel size\n", points);
}

void PrintPdf(const PictureFacts& facts) {
  constexpr double kMillimetersPerPoint = 25.4 / 72;
  fmt::print("{}: pdf", OnOneLine(facts.file));
  if (const auto pages = facts.pdf->pages) {
    fmt::print(", {} page{}", *pages, *pages == 1 ? "" : "s");
  }
  if (const auto& page = facts.pdf->firstPage) {
    fmt::print(", the first {:.1f} x {:.1f} mm", page->width * kMillimetersPerPoint,
               page->height * kMillimetersPerPoint);
  }
  fmt::print(", {} bytes\n", facts.bytes);
}

void PrintMetafile(const PictureFacts& facts) {
  const MetafileFacts& metafile = *facts.metafile;
  const bool isPlaceable = metafile.kind == MetafileKind::placeableWmf;
  fmt::print("{}: {}{}, {:.1f} x {:.1f} mm, {} x {} pixels at 96 dpi, {} records, {} bytes\n",
             OnOneLine(facts.file), isPlaceable ? "placeable " : "", facts.type,
             metafile.widthMm100 / kHundredths, metafile.heightMm100 / kHundredths, facts.width,
             facts.height, metafile.records, facts.bytes);
  if (!metafile.title.empty()) fmt::print("  title: {}\n", Printable(metafile.title));
  if (!metafile.program.empty()) fmt::print("  written by {}\n", Printable(metafile.program));
  if (metafile.hasEmfPlus) {
    fmt::print("  contains EMF+ records as well; the plain records are drawn\n");
  }
}

void PrintText(const PictureFacts& facts) {
  if (facts.pdf) return PrintPdf(facts);
  if (facts.metafile) return PrintMetafile(facts);
  fmt::print("{}: {}, {} x {} pixels, {} bit{}", OnOneLine(facts.file), facts.type, facts.width,
             facts.height, facts.bits, facts.bits == 1 ? "" : "s");
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
  PrintPhotograph(facts);
  for (const StatedPosition& position : facts.placement.stated) {
    fmt::print("  {}\n", PositionText(position));
  }
  const CoordinateSystem& system = facts.placement.system;
  if (system.IsKnown()) fmt::print("  coordinate system {}\n", SystemText(system));
  PrintLooseTiePoints(facts);
  if (!facts.metadata.empty()) fmt::print("  metadata: {}\n", fmt::join(facts.metadata, ", "));
  if (facts.verified == true) fmt::print("  the pixels can be read\n");
  if (!facts.damage.empty()) fmt::print("  the pixels are damaged\n");
}

void PrintFacts(const PictureFacts& facts, bool json) {
  if (json) {
    PrintLine(FactsJson(facts));
  } else if (facts.isKnown || facts.pdf) {
    PrintText(facts);
  }
  for (const std::string& warning : facts.warnings) {
    PrintMessage(facts.file + ": warning: " + warning);
  }
  if (!facts.error.empty()) PrintMessage(facts.file + ": " + facts.error);
  std::fflush(stdout);
}

}  // namespace

VerbRunner AddInfoVerb(CommandLine& line) {
  Verb verb =
      line.AddVerb({"info",
                    "show what a file contains",
                    {"The type is detected from the content, not from the file name. Only headers "
                     "are read, so \"ok\" means that the header can be read. --verify decodes the "
                     "pixels as well."},
                    {"rasterkit info photo.jpg", "rasterkit info --json *.png | jq .width"}});
  const auto files = std::make_shared<std::vector<std::string>>();
  const auto json = std::make_shared<bool>(false), verifies = std::make_shared<bool>(false);
  verb.Files("IN...", *files, "files to look at");
  verb.Flag("--json", *json, "print one JSON object per file, each on its own line");
  verb.Flag("--verify", *verifies, "decode each picture and say whether its pixels can be read");
  AddIsolate(verb);
  return [files, json, verifies] {
    detail::SetMostWorkers(1);
    ExitCode code = exitDone;
    for (const std::string& file : *files) {
      StopIfInterrupted();
      const PictureFacts facts = GatherFacts(file, *verifies);
      PrintFacts(facts, *json);
      if (!facts.error.empty()) code = exitInputUnreadable;
    }
    return code;
  };
}

}  // namespace rasterkit::tool
