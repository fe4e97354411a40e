#include "apps/rasterkit/exif_report.h"

#include <cstdio>
#include <optional>

#include <fmt/format.h>

#include <rasterkit/host/runtime/errors.h>
#include <rasterkit/host/runtime/text.h>
#include <rasterkit/jpegexif/photo_queries.h>

#include "apps/rasterkit/exif_names.h"
#include "apps/rasterkit/exif_thumbnail.h"
#include "apps/rasterkit/exit_code.h"
#include "apps/rasterkit/jpeg_header.h"
#include "apps/rasterkit/jpeg_input.h"
#include "apps/rasterkit/photo_facts.h"

#include <nlohmann/json.hpp>

namespace rasterkit::tool {
namespace {

using Json = nlohmann::ordered_json;

struct Field {
  const char* directory;
  uint16_t tag;
  std::string name, value;
};

struct Section {
  std::string marker;
  std::string kind;
  size_t place, bytes;
};

struct Thumbnail {
  size_t bytes;
  int width, height;
};

/// What is shown of one file.
struct ExifReport {
  std::string file;
  std::string error;
  int width = 0, height = 0;
  PhotoFacts photo;
  std::string byteOrder;
  /// "2019-07-04T13:05:09"; empty when no date can be read.
  std::string date;
  std::vector<std::string> comments;
  std::optional<Thumbnail> thumbnail;
  std::vector<Section> sections;
  std::vector<Field> fields;
  std::vector<std::string> warnings;
};

std::string TextOf(const ExifBlock& block, const char* directory, uint16_t tag) {
  const ExifDirectory* found = block.Find(directory);
  const ExifEntry* entry = found != nullptr ? found->Find(tag) : nullptr;
  return entry != nullptr ? block.Text(*entry) : "";
}

/// The EXIF form of a moment, "2019:07:04 13:05:09", as ISO 8601; empty when it is none.
std::string IsoDate(std::string text) {
  try {
    ParseExifDateTime(text);
  } catch (const Error&) {
    return {};
  }
  constexpr size_t datePart = 10;
  if (text.size() <= datePart) return {};
  text[4] = text[7] = '-';
  text[datePart] = 'T';
  return text;
}

/// When the photo was taken, else when its file was last changed.
std::string DateOf(const ExifBlock& block) {
  constexpr uint16_t dateTimeOriginal = 36867, dateTime = 306;
  const std::string taken = IsoDate(TextOf(block, "exif", dateTimeOriginal));
  return taken.empty() ? IsoDate(TextOf(block, "main", dateTime)) : taken;
}

void AddComment(ExifReport& report, const std::string& comment) {
  if (!comment.empty()) report.comments.push_back(comment);
}

void TakeThumbnail(ExifReport& report, const ExifBlock& block) {
  const std::string bytes = ThumbnailBytes(block);
  if (bytes.empty()) return;
  const JpegHeader header =
      ReadJpegHeader({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
  report.thumbnail = Thumbnail{bytes.size(), header.width, header.height};
}

void TakeFields(ExifReport& report, const ExifBlock& block) {
  for (const ExifDirectory& directory : block.Directories())
    for (const ExifEntry& entry : directory.entries)
      report.fields.push_back(
          {directory.name, entry.tag, ExifTagName(directory.name, entry.tag), block.Text(entry)});
}

void TakeExif(ExifReport& report, const JpegSegment& segment) {
  constexpr uint16_t userComment = 37510;
  const ExifBlock block(SectionBytes(segment));
  report.byteOrder = block.ByteOrder();
  if (block.IsDamaged()) report.warnings.emplace_back("EXIF: the section is damaged");
  report.date = DateOf(block);
  const ExifDirectory* exif = block.Find("exif");
  const ExifEntry* comment = exif != nullptr ? exif->Find(userComment) : nullptr;
  if (comment != nullptr && block.Text(*comment) != fmt::format("{} bytes", comment->byteCount))
    AddComment(report, block.Text(*comment));
  TakeThumbnail(report, block);
  TakeFields(report, block);
}

void TakeHeader(ExifReport& report, const JpegHeader& header) {
  report.width = header.width;
  report.height = header.height;
  if (!header.isComplete)
    report.warnings.emplace_back("JPEG: the header does not lead to picture data");
  for (const JpegSegment& segment : header.segments) {
    report.sections.push_back(
        {MarkerName(segment.marker), SegmentKind(segment), segment.place, segment.Size()});
    if (report.sections.back().kind == "comment")
      AddComment(report, Trim({reinterpret_cast<const char*>(segment.payload.data()),
                               segment.payload.size()}));
  }
  if (const JpegSegment* exif = header.Find("exif")) TakeExif(report, *exif);
}

ExifReport Examine(const std::string& file) {
  ExifReport report;
  report.file = file;
  try {
    const std::vector<uint8_t> jpeg = ReadJpegInput(file);
    report.photo = ReadPhotoFacts(jpeg);
    report.warnings = report.photo.warnings;
    TakeHeader(report, ReadJpegHeader(jpeg));
  } catch (const Failure& failure) {
    report.error = failure.what();
  }
  return report;
}

// ---- printing
// ------------------------------------------------------------------------------------

/// A file's text with escapes for what would steer the terminal, and for bytes that are no UTF-8.
std::string Printable(const std::string& text) {
  const std::string quoted = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
  return quoted.substr(1, quoted.size() - 2);
}

Json TextOrNull(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

Json GpsJson(const std::optional<GpsPosition>& gps) {
  if (!gps) return {};
  return {{"latitude", gps->latitude},
          {"longitude", gps->longitude},
          {"altitude", gps->altitude ? Json(*gps->altitude) : Json()}};
}

Json SectionsJson(const ExifReport& report) {
  Json list = Json::array();
  for (const Section& section : report.sections)
    list.push_back({{"marker", section.marker},
                    {"kind", TextOrNull(section.kind)},
                    {"place", section.place},
                    {"bytes", section.bytes}});
  return list;
}

Json FieldsJson(const ExifReport& report) {
  Json list = Json::array();
  for (const Field& field : report.fields)
    list.push_back({{"directory", field.directory},
                    {"tag", field.tag},
                    {"name", TextOrNull(field.name)},
                    {"value", field.value}});
  return list;
}

Json ThumbnailJson(const std::optional<Thumbnail>& thumbnail) {
  if (!thumbnail) return {};
  return {{"bytes", thumbnail->bytes}, {"width", thumbnail->width}, {"height", thumbnail->height}};
}

void PrintJson(const ExifReport& report) {
  const PhotoFacts& photo = report.photo;
  Json line;
  line["schema"] = 1;
  line["file"] = report.file;
  line["ok"] = report.error.empty();
  line["error"] = TextOrNull(report.error);
  line["width"] = report.error.empty() ? Json(report.width) : Json();
  line["height"] = report.error.empty() ? Json(report.height) : Json();
  line["byte_order"] = TextOrNull(report.byteOrder);
  line["orientation"] = photo.orientation ? Json(*photo.orientation) : Json();
  line["rotation"] = photo.rotation ? Json(*photo.rotation) : Json();
  line["date"] = TextOrNull(report.date);
  line["gps"] = GpsJson(photo.gps);
  line["comments"] = report.comments;
  line["thumbnail"] = ThumbnailJson(report.thumbnail);
  line["sections"] = SectionsJson(report);
  line["fields"] = FieldsJson(report);
  line["warnings"] = report.warnings;
  fmt::print("{}\n", line.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void PrintFields(const ExifReport& report) {
  const char* directory = "";
  for (const Field& field : report.fields) {
    if (field.directory != directory) fmt::print("  {} directory:\n", field.directory);
    directory = field.directory;
    const std::string name = field.name.empty() ? fmt::format("tag {}", field.tag) : field.name;
    fmt::print("    {:<28} {}\n", name, Printable(field.value));
  }
}

void PrintText(const ExifReport& report) {
  fmt::print("{}: {} x {} pixels\n", report.file, report.width, report.height);
  if (report.photo.orientation)
    fmt::print("  orientation {}, rotation {}\n", *report.photo.orientation,
               report.photo.rotation.value_or(0));
  if (!report.date.empty()) fmt::print("  date {}\n", report.date);
  if (const auto& gps = report.photo.gps) {
    fmt::print("  GPS {:.6f}, {:.6f}", gps->latitude, gps->longitude);
    if (gps->altitude) fmt::print(", {:.1f} m", *gps->altitude);
    fmt::print("\n");
  }
  for (const std::string& comment : report.comments)
    fmt::print("  comment: {}\n", Printable(comment));
  if (report.thumbnail)
    fmt::print("  thumbnail {} x {} pixels, {} bytes\n", report.thumbnail->width,
               report.thumbnail->height, report.thumbnail->bytes);
  fmt::print("  sections:\n");
  for (const Section& section : report.sections)
    fmt::print("    {:<5} {:<8} {} bytes at {}\n", section.marker, section.kind, section.bytes,
               section.place);
  PrintFields(report);
}

}  // namespace

bool ReportExif(const std::string& file, bool json) {
  const ExifReport report = Examine(file);
  if (json) {
    PrintJson(report);
  } else if (report.error.empty()) {
    PrintText(report);
  }
  for (const std::string& warning : report.warnings)
    fmt::print(stderr, "rasterkit: {}: warning: {}\n", file, warning);
  if (!report.error.empty()) fmt::print(stderr, "rasterkit: {}\n", report.error);
  std::fflush(stdout);
  return report.error.empty();
}

}  // namespace rasterkit::tool
