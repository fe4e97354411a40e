#include <cstdio>
#include <memory>

#include <fmt/format.h>

#include "apps/rasterkit/exit_code.h"
#include "apps/rasterkit/interruption.h"
#include "apps/rasterkit/picture_facts.h"
#include "apps/rasterkit/verbs.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace rasterkit::tool {
namespace {

using Json = nlohmann::ordered_json;

/// `value` for a picture that was read, else null.
template <class T>
Json IfRead(const PictureFacts& facts, const T& value) {
  return facts.error.empty() ? Json(value) : Json();
}

Json GpsJson(const std::optional<GpsPosition>& gps) {
  if (!gps) return {};
  return {{"latitude", gps->latitude},
          {"longitude", gps->longitude},
          {"altitude", gps->altitude ? Json(*gps->altitude) : Json()}};
}

Json GeoJson(const PictureFacts& facts) {
  Json sources = Json::array();
  if (facts.worldFile) {
    sources.push_back({{"source", "worldfile"},
                       {"file", facts.worldFile->file},
                       {"affine", facts.worldFile->affine}});
  }
  return sources;
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
  line["geo"] = GeoJson(facts);
  line["grid"] = "none";
  line["pages"] = IfRead(facts, 1);
  line["bytes"] = facts.bytes;
  line["metadata"] = facts.metadata;
  line["warnings"] = facts.warnings;
  return line;
}

void PrintText(const PictureFacts& facts) {
  fmt::print("{}: {}, {} x {} pixels, {} bits", facts.file, facts.type, facts.width, facts.height,
             facts.bits);
  if (facts.paletteEntries > 0) fmt::print(", {} palette entries", facts.paletteEntries);
  if (facts.transparent) fmt::print(", transparent");
  if (facts.dpi) fmt::print(", {:.5g} x {:.5g} dpi", (*facts.dpi)[0], (*facts.dpi)[1]);
  fmt::print(", {} bytes\n", facts.bytes);
  if (facts.photo.orientation)
    fmt::print("  orientation {}, rotation {}\n", *facts.photo.orientation,
               facts.photo.rotation.value_or(0));
  if (const auto& gps = facts.photo.gps) {
    fmt::print("  GPS {:.6f}, {:.6f}", gps->latitude, gps->longitude);
    if (gps->altitude) fmt::print(", {:.1f} m", *gps->altitude);
    fmt::print("\n");
  }
  if (facts.worldFile)
    fmt::print("  world file {}: {}\n", facts.worldFile->file,
               fmt::join(facts.worldFile->affine, " "));
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
