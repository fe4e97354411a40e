#include "tool/reports/exif_report.h"

#include <cstdio>

#include <fmt/format.h>

#include "tool/command/printable.h"
#include "tool/reports/exif_facts.h"
#include "tool/reports/geo_json.h"

#include <nlohmann/json.hpp>

namespace rasterkit::tool {
namespace {

using Json = nlohmann::ordered_json;

Json TextOrNull(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

Json SectionsJson(const ExifFacts& facts) {
  Json list = Json::array();
  for (const ExifFacts::Section& section : facts.sections)
    list.push_back({{"marker", section.marker},
                    {"kind", TextOrNull(section.kind)},
                    {"place", section.place},
                    {"bytes", section.bytes}});
  return list;
}

Json FieldsJson(const ExifFacts& facts) {
  Json list = Json::array();
  for (const ExifFacts::Field& field : facts.fields)
    list.push_back({{"directory", field.directory},
                    {"tag", field.tag},
                    {"name", TextOrNull(field.name)},
                    {"value", field.value}});
  return list;
}

Json ThumbnailJson(const std::optional<ExifFacts::Thumbnail>& thumbnail) {
  if (!thumbnail) return {};
  return {{"bytes", thumbnail->bytes}, {"width", thumbnail->width}, {"height", thumbnail->height}};
}

void PrintJson(const ExifFacts& facts) {
  const PhotoFacts& photo = facts.photo;
  Json line;
  line["schema"] = 1;
  line["file"] = facts.file;
  line["ok"] = facts.error.empty();
  line["error"] = TextOrNull(facts.error);
  line["width"] = facts.error.empty() ? Json(facts.width) : Json();
  line["height"] = facts.error.empty() ? Json(facts.height) : Json();
  line["byte_order"] = TextOrNull(facts.byteOrder);
  line["orientation"] = photo.orientation ? Json(*photo.orientation) : Json();
  line["rotation"] = photo.rotation ? Json(*photo.rotation) : Json();
  line["date"] = TextOrNull(facts.date);
  line["gps"] = GpsJson(photo.gps);
  line["comments"] = facts.comments;
  line["thumbnail"] = ThumbnailJson(facts.thumbnail);
  line["sections"] = SectionsJson(facts);
  line["fields"] = FieldsJson(facts);
  line["warnings"] = facts.warnings;
  fmt::print("{}\n", line.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void PrintFields(const ExifFacts& facts) {
  const char* directory = "";
  for (const ExifFacts::Field& field : facts.fields) {
    if (field.directory != directory) fmt::print("  {} directory:\n", field.directory);
    directory = field.directory;
    const std::string name = field.name.empty() ? fmt::format("tag {}", field.tag) : field.name;
    fmt::print("    {:<28} {}\n", name, Printable(field.value));
  }
}

void PrintText(const ExifFacts& facts) {
  fmt::print("{}: {} x {} pixels\n", facts.file, facts.width, facts.height);
  if (facts.photo.orientation)
    fmt::print("  orientation {}, rotation {}\n", *facts.photo.orientation,
               facts.photo.rotation.value_or(0));
  if (!facts.date.empty()) fmt::print("  date {}\n", facts.date);
  if (const auto& gps = facts.photo.gps) {
    fmt::print("  GPS {:.6f}, {:.6f}", gps->latitude, gps->longitude);
    if (gps->altitude) fmt::print(", {:.1f} m", *gps->altitude);
    fmt::print("\n");
  }
  for (const std::string& comment : facts.comments)
    fmt::print("  comment: {}\n", Printable(comment));
  if (facts.thumbnail)
    fmt::print("  thumbnail {} x {} pixels, {} bytes\n", facts.thumbnail->width,
               facts.thumbnail->height, facts.thumbnail->bytes);
  fmt::print("  sections:\n");
  for (const ExifFacts::Section& section : facts.sections)
    fmt::print("    {:<5} {:<8} {} bytes at {}\n", section.marker, section.kind, section.bytes,
               section.place);
  PrintFields(facts);
}

}  // namespace

bool ReportExif(const std::string& file, bool json) {
  const ExifFacts facts = ReadExifFactsOf(file);
  if (json) {
    PrintJson(facts);
  } else if (facts.error.empty()) {
    PrintText(facts);
  }
  for (const std::string& warning : facts.warnings)
    fmt::print(stderr, "rasterkit: {}: warning: {}\n", file, warning);
  if (!facts.error.empty()) fmt::print(stderr, "rasterkit: {}\n", facts.error);
  std::fflush(stdout);
  return facts.error.empty();
}

}  // namespace rasterkit::tool
