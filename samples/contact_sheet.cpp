// contact_sheet OUT.png COLUMNS PICTURE...: the pictures side by side at half size, as their files
// hold them.

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/stream.h>

namespace {

using rasterkit::TBitmap;

constexpr int kGap = 8;

TBitmap Load(const char* name) {
  rasterkit::TFileStream stream(name);
  return TBitmap(rasterkit::DecodePicture(stream));
}

/// Cells are squares, so that lying and upright pictures take the same place.
TBitmap Arrange(const std::vector<TBitmap>& pictures, int columns) {
  int side = 0;
  for (const TBitmap& picture : pictures)
    side = std::max({side, picture.Width() / 2, picture.Height() / 2});
  const int count = static_cast<int>(pictures.size());
  const int rows = (count + columns - 1) / columns, step = side + kGap;
  TBitmap sheet;
  sheet.SetPixelFormat(rasterkit::pf24bit);
  sheet.SetSize(columns * step + kGap, rows * step + kGap);
  for (int i = 0; i < count; ++i) {
    const TBitmap& picture = pictures[static_cast<size_t>(i)];
    const int width = picture.Width() / 2, height = picture.Height() / 2;
    const int left = kGap + i % columns * step + (side - width) / 2;
    const int top = kGap + i / columns * step + (side - height) / 2;
    sheet.Canvas().StretchDraw({left, top, left + width, top + height}, picture);
  }
  return sheet;
}

}  // namespace

int main(int argc, char** argv) try {
  const int columns = argc > 3 ? std::atoi(argv[2]) : 0;
  if (columns < 1) {
    fmt::print(stderr, "usage: contact_sheet OUT.png COLUMNS PICTURE...\n");
    return 2;
  }
  std::vector<TBitmap> pictures;
  for (int i = 3; i < argc; ++i) pictures.push_back(Load(argv[i]));
  rasterkit::AtomicFile file(argv[1]);
  rasterkit::EncodePng(Arrange(pictures, columns).Content(), file);
  file.Commit();
  return 0;
} catch (const std::exception& error) {
  fmt::print(stderr, "contact_sheet: {}\n", error.what());
  return 1;
}
