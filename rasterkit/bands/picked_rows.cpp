#include <cstring>

#include <rasterkit/bands/picked_rows.h>
#include <rasterkit/kernels/rows/packed_pixels.h>

namespace rasterkit::detail {
namespace {

template <size_t kBytes>
void Pick(const uint8_t* row, const std::vector<int>& columns, uint8_t* target) {
  for (const int column : columns) {
    std::memcpy(target, row + static_cast<size_t>(column) * kBytes, kBytes);
    target += kBytes;
  }
}

void Pick(const uint8_t* row, const std::vector<int>& columns, size_t bytes, uint8_t* target) {
  switch (bytes) {
    case 1:
      return Pick<1>(row, columns, target);
    case 2:
      return Pick<2>(row, columns, target);
    case 3:
      return Pick<3>(row, columns, target);
    case 4:
      return Pick<4>(row, columns, target);
    case 6:
      return Pick<6>(row, columns, target);
    case 8:
      return Pick<8>(row, columns, target);
    default:
      for (const int column : columns) {
        std::memcpy(target, row + static_cast<size_t>(column) * bytes, bytes);
        target += bytes;
      }
  }
}

}  // namespace

void PickPixels(const std::vector<int>& columns, const std::vector<int>& rows,
                const ConstPixelGrid& source, const PixelGrid& target, int first, int last) {
  const bool isPacked = source.bits < 8;
  std::vector<uint8_t> pixels(isPacked ? static_cast<size_t>(source.rows.width) : 0);
  std::vector<uint8_t> picked(isPacked ? columns.size() : 0);
  for (int y = first; y < last; ++y) {
    const uint8_t* row = source.rows.Row(rows[static_cast<size_t>(y)]);
    if (isPacked) {
      kernels::UnpackPixels(row, source.bits, 0, source.rows.width, pixels.data());
      Pick<1>(pixels.data(), columns, picked.data());
      kernels::PackPixels(picked.data(), source.bits, 0, target.rows.width, target.rows.Row(y));
    } else {
      Pick(row, columns, source.BytesPerPixel(), target.rows.Row(y));
    }
    kernels::ClearPadding(target.rows, y, source.bits);
  }
}

}  // namespace rasterkit::detail
