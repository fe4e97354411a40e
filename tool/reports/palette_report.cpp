#include "tool/reports/palette_report.h"

#include <algorithm>
#include <cstdio>

#include <fmt/core.h>

#include <rasterkit/bands/colors/index_pixels.h>
#include <rasterkit/bands/colors/opacity_plane.h>

#include "tool/command/exit_code.h"
#include "tool/command/json.h"
#include "tool/command/printable.h"
#include "tool/pictures/common_palette.h"
#include "tool/pictures/picture_input.h"

namespace rasterkit::tool {
namespace {

/// A palette entry as it is printed.
struct EntryLine {
  int index = 0;
  std::string color;
  uint64_t pixels = 0;
  bool isTransparent = false;
};

std::string ColorText(const tagPALETTEENTRY& entry) {
  return fmt::format("{:02X}{:02X}{:02X}", entry.peRed, entry.peGreen, entry.peBlue);
}

std::vector<EntryLine> LinesOf(const TBitmap& bitmap) {
  std::vector<EntryLine> lines;
  if (!detail::HasIndexes(bitmap)) return lines;
  const HPALETTE palette = bitmap.Palette();
  const auto counts = detail::CountIndexes(bitmap);
  for (int i = 0; i < palette.Count(); ++i) {
    const tagPALETTEENTRY entry = palette.Entry(i);
    lines.push_back({i, ColorText(entry), counts[static_cast<size_t>(i)],
                     bitmap.Transparent() && EntryColor(entry) == bitmap.TransparentColor()});
  }
  return lines;
}

void PrintText(const std::string& file, const TBitmap& bitmap,
               const std::vector<EntryLine>& lines) {
  if (lines.empty()) {
    fmt::print("{}: {}-bit, no palette\n", OnOneLine(file), bitmap.StoredBits());
    return;
  }
  const auto used = std::count_if(lines.begin(), lines.end(),
                                  [](const EntryLine& line) { return line.pixels > 0; });
  fmt::print("{}: {}-bit, {} palette entries, {} of them used\n", OnOneLine(file),
             bitmap.StoredBits(), lines.size(), used);
  for (const EntryLine& line : lines) {
    fmt::print("{:5}  {}  {} pixels{}\n", line.index, line.color, line.pixels,
               line.isTransparent ? ", transparent" : "");
  }
}

/// `bits` is null if the picture cannot be read.
void PrintJson(const std::string& file, const std::string& error, const Json& bits,
               const std::vector<EntryLine>& lines) {
  JsonList entries;
  for (const EntryLine& line : lines) {
    entries.Add(JsonObject()
                    .Add("index", line.index)
                    .Add("color", line.color)
                    .Add("pixels", line.pixels)
                    .Add("transparent", line.isTransparent));
  }
  PrintLine(JsonObject()
                .Add("schema", 1)
                .Add("file", file)
                .Add("ok", error.empty())
                .Add("error", TextOrNull(error))
                .Add("bits", bits)
                .Add("entries", entries));
}

LoadedPicture Load(const std::string& file, bool json) {
  try {
    return LoadPicture(file);
  } catch (const Failure& failure) {
    if (json) PrintJson(file, failure.what(), nullptr, {});
    throw;
  }
}

}  // namespace

int ShowPalette(const std::string& file, bool json) {
  const LoadedPicture picture = Load(file, json);
  for (const std::string& warning : picture.warnings) {
    PrintMessage(fmt::format("{}: warning: {}", file, warning));
  }
  const std::vector<EntryLine> lines = LinesOf(*picture.bitmap);
  if (json) {
    PrintJson(file, {}, picture.bitmap->StoredBits(), lines);
  } else {
    PrintText(file, *picture.bitmap, lines);
  }
  return lines.empty() ? exitAnswerIsNo : exitDone;
}

int ShowCommonPalette(const std::vector<std::string>& files, bool json) {
  const CommonPalette common = ChooseCommonPalette(files);
  JsonList entries;
  if (!json) {
    fmt::print("{} entries for {} pictures, {}\n", common.palette.Count(), files.size(),
               common.isExact ? "all of their colors" : "close to their colors");
  }
  for (int i = 0; i < common.palette.Count(); ++i) {
    const std::string color = ColorText(common.palette.Entry(i));
    if (!json) fmt::print("{:5}  {}\n", i, color);
    entries.Add(JsonObject().Add("index", i).Add("color", color));
  }
  if (!json) return exitDone;
  PrintLine(JsonObject()
                .Add("schema", 1)
                .Add("files", files)
                .Add("ok", true)
                .Add("error", nullptr)
                .Add("exact", common.isExact)
                .Add("entries", entries));
  return exitDone;
}

}  // namespace rasterkit::tool
