#include <algorithm>
#include <vector>

#include <rasterkit/codecs/rows/palette_entries_of_file.h>
#include <rasterkit/raster/row_conversion.h>

namespace rasterkit::detail {

namespace {

int LargestIndex(const Raster& raster) {
  std::vector<uint8_t> indexes(static_cast<size_t>(raster.Width()));
  if (indexes.empty()) return 0;
  int largest = 0;
  for (int y = 0; y < raster.Height(); y++) {
    UnpackIndexes(raster.Row(y), raster.Format(), raster.Width(), indexes.data());
    largest = std::max<int>(largest, *std::max_element(indexes.begin(), indexes.end()));
  }
  return largest;
}

}  // namespace

int PaletteEntriesOfFile(const Raster& raster) {
  constexpr int kMostBits = 8;
  const int most = 1 << std::min(StoredBitsPerPixel(raster.Format()), kMostBits);
  const int count = std::min(raster.palette.Count(), most);
  return count < most ? std::max(count, LargestIndex(raster) + 1) : most;
}

}  // namespace rasterkit::detail
