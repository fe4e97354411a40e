#include <algorithm>
#include <array>
#include <vector>

#include <rasterkit/bitmaptools/engine/sharpen.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/transfer/sharpen_rows.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

constexpr size_t kPixel = sizeof(RGBrec);

using PaddedRow = std::vector<uint8_t>;

/// Row with its outer pixels repeated, so that every pixel has neighbors.
void CopyPadded(const TBitmap& bitmap, int y, PaddedRow& row) {
  const uint8_t* const source = bitmap.ScanLine(std::clamp(y, 0, bitmap.Height() - 1));
  const size_t bytes = bitmap.Content().RowBytes();
  std::copy_n(source, kPixel, row.data());
  std::copy_n(source, bytes, row.data() + kPixel);
  std::copy_n(source + bytes - kPixel, kPixel, row.data() + kPixel + bytes);
}

}  // namespace

/// Turns nine times the distance from the mean into a percentage of that distance.
int16_t detail::SharpenShare(int32_t percent) {
  const int weight = percent > 0 ? 2 * percent : percent;
  return static_cast<int16_t>(Round(weight * 32768.0 / 900));
}

void Sharpen(TBitmap* bitmap, int32_t percent) {
  if (percent == 0 || bitmap == nullptr || bitmap->Empty()) return;
  bitmap->SetPixelFormat(pf24bit);
  const int16_t share = detail::SharpenShare(std::clamp(percent, -100, 100));
  const auto width = static_cast<size_t>(bitmap->Width());
  // Original rows above, at and below the row that is written.
  std::array<PaddedRow, 3> rows;
  for (PaddedRow& row : rows) row.resize((width + 2) * kPixel);
  CopyPadded(*bitmap, 0, rows[1]);
  CopyPadded(*bitmap, 0, rows[2]);
  for (int y = 0; y < bitmap->Height(); ++y) {
    std::rotate(rows.begin(), rows.begin() + 1, rows.end());
    CopyPadded(*bitmap, y + 1, rows[2]);
    kernels::SharpenRow24(share, rows[0].data(), rows[1].data(), rows[2].data(), width,
                          bitmap->ScanLine(y));
  }
  bitmap->SetModified(true);
}

}  // namespace rasterkit
