#include "tool/reports/palette_report.h"

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>

#include "tool/command/exit_code.h"
#include "tool/pictures/entry_rows.h"
#include "tool/pictures/picture_file.h"
#include "tool/pictures/transparency.h"

#include <nlohmann/json.hpp>

namespace rasterkit::tool {
namespace {

/// An entry as people and programs are told of it.
struct EntryLine {
  int index = 0;
  std::string color;
  uint64_t pixels = 0;
  bool isTransparent = false;
};

std::vector<EntryLine> LinesOf(const TBitmap& bitmap) {
  std::vector<EntryLine> lines;
  if (!HasIndexes(bitmap)) return lines;
  const HPALETTE palette = bitmap.Palette();
  const auto counts = CountIndexes(bitmap);
  for (int i = 0; i < palette.Count(); ++i) {
    const tagPALETTEENTRY entry = palette.Entry(i);
    lines.push_back({i, fmt::format("{:02X}{:02X}{:02X}", entry.peRed, entry.peGreen, entry.peBlue),
                     counts[static_cast<size_t>(i)],
                     bitmap.Transparent() && EntryColor(entry) == bitmap.TransparentColor()});
  }
  return lines;
}

void PrintText(const std::string& file, const TBitmap& bitmap,
               const std::vector<EntryLine>& lines) {
  if (lines.empty()) {
    fmt::print("{}: {}-bit, no palette\n", file, bitmap.StoredBits());
    return;
  }
  const auto used = std::count_if(lines.begin(), lines.end(),
                                  [](const EntryLine& line) { return line.pixels > 0; });
  fmt::print("{}: {}-bit, {} palette entries, {} of them used\n", file, bitmap.StoredBits(),
             lines.size(), used);
  for (const EntryLine& line : lines)
    fmt::print("{:5}  {}  {} pixels{}\n", line.index, line.color, line.pixels,
               line.isTransparent ? ", transparent" : "");
}

void PrintJson(const std::string& file, const TBitmap& bitmap,
               const std::vector<EntryLine>& lines) {
  nlohmann::ordered_json object;
  object["schema"] = 1;
  object["file"] = file;
  object["ok"] = true;
  object["error"] = nullptr;
  object["bits"] = bitmap.StoredBits();
  object["entries"] = nlohmann::ordered_json::array();
  for (const EntryLine& line : lines)
    object["entries"].push_back({{"index", line.index},
                                 {"color", line.color},
                                 {"pixels", line.pixels},
                                 {"transparent", line.isTransparent}});
  fmt::print("{}\n", object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

void PrintFailure(const std::string& file, const std::string& error) {
  nlohmann::ordered_json object;
  object["schema"] = 1;
  object["file"] = file;
  object["ok"] = false;
  object["error"] = error;
  object["bits"] = nullptr;
  object["entries"] = nlohmann::ordered_json::array();
  fmt::print("{}\n", object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

LoadedPicture Load(const std::string& file, bool json) {
  try {
    return LoadPicture(file);
  } catch (const Failure& failure) {
    if (json) PrintFailure(file, failure.what());
    throw;
  }
}

}  // namespace

int ShowPalette(const std::string& file, bool json) {
  const LoadedPicture picture = Load(file, json);
  for (const std::string& warning : picture.warnings)
    fmt::print(stderr, "rasterkit: {}: warning: {}\n", file, warning);
  const std::vector<EntryLine> lines = LinesOf(*picture.bitmap);
  json ? PrintJson(file, *picture.bitmap, lines) : PrintText(file, *picture.bitmap, lines);
  return lines.empty() ? exitAnswerIsNo : exitDone;
}

}  // namespace rasterkit::tool
