#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/codecs/gif/gif_reader.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {

namespace {

using detail::GifReader;

/// Most pixels per byte, rounded up: the longest code of LZW gives 4091 pixels and takes 12 bits.
constexpr uint64_t kPixelsPerByte = 2728;

/// The place of the picture on its screen. Some programs state a screen that is too small, or none:
/// it grows to hold the picture.
struct Layout {
  int screenWidth = 0, screenHeight = 0;
  int left = 0, top = 0, width = 0, height = 0;
  bool interlaced = false;

  explicit Layout(const GifFileType& gif)
      : screenWidth(std::max(gif.SWidth, gif.Image.Left + gif.Image.Width)),
        screenHeight(std::max(gif.SHeight, gif.Image.Top + gif.Image.Height)),
        left(gif.Image.Left),
        top(gif.Image.Top),
        width(gif.Image.Width),
        height(gif.Image.Height),
        interlaced(gif.Image.Interlace) {}

  bool CoversScreen() const { return width == screenWidth && height == screenHeight; }
};

/// Refuses impossible sizes before that much memory is allocated.
void RequirePlausibleSize(const Layout& layout, size_t fileBytes) {
  if (layout.width == 0 || layout.height == 0) throw FormatError("GIF: the picture has no size");
  const std::string what =
      fmt::format("GIF picture of {} x {} pixels", layout.screenWidth, layout.screenHeight);
  const uint64_t need =
      StrideBytes(layout.screenWidth, 8) * static_cast<uint64_t>(layout.screenHeight);
  RequirePicture(static_cast<uint64_t>(layout.screenWidth),
                 static_cast<uint64_t>(layout.screenHeight), need, what);
  detail::RequirePlausible({need, need, fileBytes, kPixelsPerByte * detail::kCutSlack}, what);
}

HPALETTE PaletteOf(const ColorMapObject& map) {
  std::vector<tagPALETTEENTRY> entries;
  entries.reserve(static_cast<size_t>(map.ColorCount));
  for (int i = 0; i < map.ColorCount; i++) {
    entries.push_back({map.Colors[i].Red, map.Colors[i].Green, map.Colors[i].Blue, 0});
  }
  return HPALETTE(entries);
}

/// The palette of the picture, else that of the file.
HPALETTE PaletteOf(const GifFileType& gif, CodecReport& report) {
  if (gif.Image.ColorMap) return PaletteOf(*gif.Image.ColorMap);
  if (gif.SColorMap) return PaletteOf(*gif.SColorMap);
  report.warnings.emplace_back("GIF: the file has no palette, a gray one is used");
  return GrayPalette(256);
}

/// The palette entry of the area around the picture.
uint8_t BackgroundIndex(const GifReader& reader, const HPALETTE& palette) {
  const GifFileType& gif = reader.Gif();
  if (reader.TransparentIndex()) return static_cast<uint8_t>(*reader.TransparentIndex());
  if (!gif.SColorMap) return 0;
  const int index = std::min(gif.SBackGroundColor, gif.SColorMap->ColorCount - 1);
  if (!gif.Image.ColorMap) return static_cast<uint8_t>(index);
  // The index is one of the file's palette, not of the picture's.
  const GifColorType& color = gif.SColorMap->Colors[index];
  return static_cast<uint8_t>(
      NearestEntry(palette.Entries(), RGB(color.Red, color.Green, color.Blue)));
}

/// True if an opaque pixel has the color of the transparent entry.
bool IsColorShownElsewhere(const Raster& raster, int transparent) {
  std::array<bool, 256> isTwin{};
  for (int i = 0; i < raster.palette.Count(); i++) {
    isTwin[static_cast<size_t>(i)] =
        i != transparent && EntryColor(raster.palette.Entry(i)) == raster.transparentColor;
  }
  if (std::find(isTwin.begin(), isTwin.end(), true) == isTwin.end()) return false;
  for (int y = 0; y < raster.Height(); y++) {
    const uint8_t* row = raster.Row(y);
    if (std::any_of(row, row + raster.Width(), [&](uint8_t index) { return isTwin[index]; })) {
      return true;
    }
  }
  return false;
}

/// The rows in the order of the file. Interlaced files start with every eighth row.
std::vector<int> RowOrder(const Layout& layout) {
  struct Pass {
    int first, step;
  };
  constexpr Pass kPlainPasses[] = {{0, 1}};
  constexpr Pass kInterlacedPasses[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
  std::vector<int> order;
  order.reserve(static_cast<size_t>(layout.height));
  for (const Pass& pass :
       layout.interlaced ? std::span<const Pass>(kInterlacedPasses) : kPlainPasses) {
    for (int y = pass.first; y < layout.height; y += pass.step) order.push_back(y);
  }
  return order;
}

uint8_t* PictureRow(Raster& raster, const Layout& layout, int y) {
  return raster.Row(layout.top + y) + layout.left;
}

/// Decodes into the raster; returns the number of decoded rows.
size_t DecodeRows(GifReader& reader, const Layout& layout, const std::vector<int>& order,
                  Raster& raster) {
  size_t count = 0;
  while (count < order.size() &&
         reader.ReadRow(PictureRow(raster, layout, order[count]), layout.width)) {
    count++;
    RequireTime();
  }
  if (count > 0) return count;
  throw FormatError(reader.IsCutOff() ? "GIF: the data end before the first row" : reader.Reason());
}

/// Fills missing rows. If the first pass is complete, they repeat the rows above, so that a
/// truncated file gives a coarse picture without holes; else they become white.
void FillMissing(const Layout& layout, const std::vector<int>& order, size_t count,
                 Raster& raster) {
  std::vector<bool> isThere(order.size());
  for (size_t i = 0; i < count; i++) isThere[static_cast<size_t>(order[i])] = true;
  const bool hasWholeCoarsePicture =
      count == order.size() || (layout.interlaced && order[count] % 8 != 0);
  const int coarseRows = hasWholeCoarsePicture ? layout.height : order[count];
  const uint8_t white = detail::WhiteByte(raster);
  const auto width = static_cast<size_t>(layout.width);
  for (int y = 0; y < layout.height; y++) {
    if (isThere[static_cast<size_t>(y)]) continue;
    uint8_t* row = PictureRow(raster, layout, y);
    if (y < coarseRows) {
      std::memcpy(row, PictureRow(raster, layout, y - 1), width);
    } else {
      std::memset(row, white, width);
    }
  }
}

void FillAround(const Layout& layout, uint8_t background, Raster& raster) {
  const auto left = static_cast<size_t>(layout.left);
  const size_t right = left + static_cast<size_t>(layout.width);
  for (int y = 0; y < layout.screenHeight; y++) {
    uint8_t* row = raster.Row(y);
    if (y < layout.top || y >= layout.top + layout.height) {
      std::memset(row, background, raster.RowBytes());
    } else {
      std::memset(row, background, left);
      std::memset(row + right, background, raster.RowBytes() - right);
    }
  }
}

}  // namespace

Raster DecodeGif(std::span<const uint8_t> bytes, CodecReport* report) {
  const LimitsScope limits;
  CodecReport noticed;
  GifReader reader(bytes);
  reader.FindFirstPicture();
  const Layout layout(reader.Gif());
  RequirePlausibleSize(layout, bytes.size());

  Raster raster(pf8bit, layout.screenWidth, layout.screenHeight);
  raster.palette = PaletteOf(reader.Gif(), noticed);
  const std::optional<int> transparent = reader.TransparentIndex();
  if (transparent && *transparent < raster.palette.Count()) {
    raster.transparentColor = EntryColor(raster.palette.Entry(*transparent));
  }

  const std::vector<int> order = RowOrder(layout);
  const size_t count = DecodeRows(reader, layout, order, raster);
  FillMissing(layout, order, count, raster);
  if (!layout.CoversScreen()) FillAround(layout, BackgroundIndex(reader, raster.palette), raster);
  raster.ClearPadding();

  if (count < order.size()) {
    noticed.AddDamage(
        reader.IsCutOff()
            ? fmt::format("GIF: the data end early, {} of {} rows are complete", count,
                          order.size())
            : fmt::format("{}, {} of {} rows are complete", reader.Reason(), count, order.size()));
  } else if (reader.IsCutOff()) {
    noticed.warnings.emplace_back("GIF: the file is cut off");
  }
  if (raster.transparentColor && IsColorShownElsewhere(raster, *transparent)) {
    noticed.warnings.emplace_back("GIF: opaque pixels of the transparent color become transparent");
  }
  if (report) report->Append(noticed);
  return raster;
}

}  // namespace rasterkit
