// metafile_sheet OUT.png PICTURES GROUPS TITLE PICTURE... TITLE PICTURE...
// Writes a contact sheet: under each title PICTURES pictures side by side, and GROUPS such groups
// per row. White margins are cut off, as some programs draw them around the picture. A missing
// picture leaves a gray field.

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/stream.h>

namespace {

using rasterkit::PixelRect;
using rasterkit::Raster;
using rasterkit::TBitmap;

constexpr int kCellWidth = 480, kCellHeight = 360, kTitle = 22, kGap = 8;
constexpr rasterkit::TColor kPaper = 0xE8E8E8, kMissing = 0xB0B0B0;

struct Group {
  std::string title;
  std::vector<std::string> pictures;
};

struct Layout {
  int pictures = 1, groups = 1;

  int GroupWidth() const { return pictures * (kCellWidth + kGap) + kGap; }
  int GroupHeight() const { return kTitle + kCellHeight + kGap; }
  PixelRect Cell(int group, int picture) const {
    const int left = group % groups * GroupWidth() + kGap + picture * (kCellWidth + kGap);
    const int top = group / groups * GroupHeight() + kTitle;
    return {left, top, left + kCellWidth, top + kCellHeight};
  }
};

/// `raster` is pf32bit; transparent parts count as white.
bool IsWhite(const Raster& raster, int x, int y) {
  const uint8_t* pixel = raster.Row(y) + static_cast<size_t>(x) * 4;
  return pixel[3] == 0 || (pixel[0] == 255 && pixel[1] == 255 && pixel[2] == 255);
}

/// Returns the bounding box of all pixels that are not white; the whole picture if all are.
PixelRect Drawn(const Raster& raster) {
  PixelRect box{raster.Width(), raster.Height(), 0, 0};
  for (int y = 0; y < raster.Height(); ++y) {
    for (int x = 0; x < raster.Width(); ++x) {
      if (IsWhite(raster, x, y)) continue;
      box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
             std::max(box.bottom, y + 1)};
    }
  }
  return box.right > box.left ? box : PixelRect{0, 0, raster.Width(), raster.Height()};
}

std::optional<TBitmap> Load(const std::string& file) {
  if (!std::filesystem::exists(file)) return std::nullopt;
  rasterkit::TFileStream stream(file);
  const Raster whole =
      rasterkit::ConvertRaster(rasterkit::DecodePicture(stream), rasterkit::pf32bit);
  const PixelRect box = Drawn(whole);
  Raster part(rasterkit::pf32bit, box.right - box.left, box.bottom - box.top);
  rasterkit::FillRaster(part, {0, 0, part.Width(), part.Height()}, rasterkit::clWhite);
  for (int y = 0; y < part.Height(); ++y) {
    for (int x = 0; x < part.Width(); ++x) {
      if (IsWhite(whole, box.left + x, box.top + y)) continue;
      const uint8_t* from = whole.Row(box.top + y) + static_cast<size_t>(box.left + x) * 4;
      std::copy_n(from, 3, part.Row(y) + static_cast<size_t>(x) * 4);
    }
  }
  return TBitmap(rasterkit::ConvertRaster(part, rasterkit::pf24bit));
}

/// Returns the largest place in the center of the cell.
PixelRect Fitted(const PixelRect& cell, int width, int height) {
  const double scale =
      std::min(static_cast<double>(kCellWidth) / width, static_cast<double>(kCellHeight) / height);
  const int w = std::max(1, static_cast<int>(width * scale));
  const int h = std::max(1, static_cast<int>(height * scale));
  const int left = cell.left + (kCellWidth - w) / 2, top = cell.top + (kCellHeight - h) / 2;
  return {left, top, left + w, top + h};
}

rasterkit::TRect ToRect(const PixelRect& box) {
  return {box.left, box.top, box.right, box.bottom};
}

TBitmap Paste(const std::vector<Group>& groups, const Layout& layout) {
  const int count = static_cast<int>(groups.size());
  TBitmap sheet;
  sheet.SetPixelFormat(rasterkit::pf24bit);
  sheet.SetSize(layout.groups * layout.GroupWidth(),
                (count + layout.groups - 1) / layout.groups * layout.GroupHeight());
  rasterkit::TCanvas& canvas = sheet.Canvas();
  canvas.StretchMode = rasterkit::smHalftone;
  canvas.Brush.Color = kPaper;
  canvas.FillRect({0, 0, sheet.Width(), sheet.Height()});
  canvas.Brush.Color = kMissing;
  for (int i = 0; i < count; ++i) {
    for (int k = 0; k < layout.pictures; ++k) {
      const PixelRect cell = layout.Cell(i, k);
      const auto& name = groups[static_cast<size_t>(i)].pictures[static_cast<size_t>(k)];
      if (const std::optional<TBitmap> picture = Load(name)) {
        canvas.StretchDraw(ToRect(Fitted(cell, picture->Width(), picture->Height())), *picture);
      } else {
        canvas.FillRect(ToRect(cell));
      }
    }
  }
  return sheet;
}

std::u16string Letters(const std::string& title) {
  std::u16string letters;
  for (const char c : title) letters.push_back(static_cast<unsigned char>(c) < 0x80 ? c : u'?');
  return letters;
}

Raster WithTitles(const TBitmap& sheet, const std::vector<Group>& groups, const Layout& layout) {
  Raster raster = rasterkit::ConvertRaster(sheet.Content(), rasterkit::pf32bit);
  rasterkit::LogicalFont font;
  font.height = -12;
  font.faceName = "Arial";
  rasterkit::DeviceContext context(raster, {0, 0, raster.Width(), raster.Height()}, {}, {});
  context.SelectFont(std::make_shared<const rasterkit::LogicalFont>(font));
  context.SetBkMode(rasterkit::BackgroundMode::transparent);
  for (size_t i = 0; i < groups.size(); ++i) {
    const PixelRect first = layout.Cell(static_cast<int>(i), 0);
    const double left = first.left, top = first.top - kTitle;
    const std::u16string letters = Letters(groups[i].title);
    rasterkit::TextRun run;
    run.origin = {left, top + 4};
    run.options = rasterkit::text_option::kClipped;
    run.box = {left, top, left + layout.GroupWidth() - 2 * kGap, top + kTitle};
    run.text = letters;
    context.ExtTextOut(run);
  }
  return rasterkit::ConvertRaster(raster, rasterkit::pf24bit);
}

}  // namespace

int main(int argc, char** argv) try {
  const Layout layout{argc > 3 ? std::atoi(argv[2]) : 0, argc > 3 ? std::atoi(argv[3]) : 0};
  const bool isUsable = layout.pictures > 0 && layout.groups > 0 && argc > 4 &&
                        (argc - 4) % (1 + layout.pictures) == 0;
  if (!isUsable) {
    fmt::print(stderr, "usage: metafile_sheet OUT.png PICTURES GROUPS (TITLE PICTURE...)...\n");
    return 2;
  }
  std::vector<Group> groups;
  for (int i = 4; i < argc; i += 1 + layout.pictures)
    groups.push_back({argv[i], {argv + i + 1, argv + i + 1 + layout.pictures}});
  rasterkit::AtomicFile file(argv[1]);
  rasterkit::EncodePng(WithTitles(Paste(groups, layout), groups, layout), file);
  file.Commit();
  return 0;
} catch (const std::exception& error) {
  fmt::print(stderr, "metafile_sheet: {}\n", error.what());
  return 1;
}
