#include "tool/reports/exif_report.h"

#include <cstdio>

#include <fmt/core.h>

#include "tool/command/json.h"
#include "tool/command/printable.h"
#include "tool/reports/exif_facts.h"
#include "tool/reports/geo_json.h"

namespace rasterkit::tool {
namespace {

Json SectionsJson(const ExifFacts& facts) {
  JsonList list;
  for (const ExifFacts::Section& section : facts.sections) {
    list.Add(JsonObject()
                 .Add("marker", section.marker)
                 .Add("kind", TextOrNull(section.kind))
                 .Add("place", section.place)
                 .Add("bytes", section.bytes));
  }
  return list;
}

Json FieldsJson(const ExifFacts& facts) {
  JsonList list;
  for (const ExifFacts::Field& field : facts.fields) {
    list.Add(JsonObject()
                 .Add("directory", field.directory)
                 .Add("tag", field.tag)
                 .Add("name", TextOrNull(field.name))
                 .Add("value", field.value));
  }
  return list;
}

Json ThumbnailJson(const std::optional<ExifFacts::Thumbnail>& thumbnail) {
  if (!thumbnail) return {};
  return JsonObject()
      .Add("bytes", thumbnail->bytes)
      .Add("width", thumbnail->width)
      .Add("height", thumbnail->height);
}

void PrintJson(const ExifFacts& facts) {
  const PhotoFacts& photo = facts.photo;
  JsonObject line;
  line.Add("schema", 1);
  line.Add("file", facts.file);
  line.Add("ok", facts.error.empty());
  line.Add("error", TextOrNull(facts.error));
  line.Add("width", facts.error.empty() ? Json(facts.width) : Json());
  line.Add("height", facts.error.empty() ? Json(facts.height) : Json());
  line.Add("byte_order", TextOrNull(facts.byteOrder));
  line.Add("orientation", photo.orientation);
  line.Add("rotation", photo.rotation);
  line.Add("date", TextOrNull(facts.date));
  line.Add("gps", GpsJson(photo.gps));
  line.Add("comments", facts.comments);
  line.Add("thumbnail", ThumbnailJson(facts.thumbnail));
  line.Add("sections", SectionsJson(facts));
  line.Add("fields", FieldsJson(facts));
  line.Add("warnings", facts.warnings);
  PrintLine(line);
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
  fmt::print("{}: {} x {} pixels\n", OnOneLine(facts.file), facts.width, facts.height);
  if (facts.photo.orientation) {
    fmt::print("  orientation {}, rotation {}\n", *facts.photo.orientation,
               facts.photo.rotation.value_or(0));
  }
  if (!facts.date.empty()) fmt::print("  date {}\n", facts.date);
  if (const auto& gps = facts.photo.gps) {
    fmt::print("  GPS {:.6f}, {:.6f}", gps->latitude, gps->longitude);
    if (gps->altitude) fmt::print(", {:.1f} m", *gps->altitude);
    fmt::print("\n");
  }
  for (const std::string& comment : facts.comments) {
    fmt::print("  comment: {}\n", Printable(comment));
  }
  if (facts.thumbnail) {
    fmt::print("  thumbnail {} x {} pixels, {} bytes\n", facts.thumbnail->width,
               facts.thumbnail->height, facts.thumbnail->bytes);
  }
  fmt::print("  sections:\n");
  for (const ExifFacts::Section& section : facts.sections) {
    fmt::print("    {:<5} {:<8} {} bytes at {}\n", section.marker, section.kind, section.bytes,
               section.place);
  }
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
  for (const std::string& warning : facts.warnings) {
    PrintMessage(fmt::format("{}: warning: {}", file, warning));
  }
  if (!facts.error.empty()) PrintMessage(facts.error);
  std::fflush(stdout);
  return facts.error.empty();
}

}  // namespace rasterkit::tool
