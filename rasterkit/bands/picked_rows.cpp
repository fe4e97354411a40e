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

void PickPixels(const ConstPixelGrid& source, int sourceRow, const std::vector<int>& columns,
                const PixelGrid& target, int targetRow) {
  const uint8_t* row = source.rows.Row(sourceRow);
  uint8_t* picked = target.rows.Row(targetRow);
  if (source.bits < 8) {
    std::vector<uint8_t> pixels(static_cast<size_t>(source.rows.width) + columns.size());
    uint8_t* const made = pixels.data() + source.rows.width;
    kernels::UnpackPixels(row, source.bits, 0, source.rows.width, pixels.data());
    Pick<1>(pixels.data(), columns, made);
    kernels::PackPixels(made, source.bits, 0, target.rows.width, picked);
  } else {
    Pick(row, columns, source.BytesPerPixel(), picked);
  }
  kernels::ClearPadding(target.rows, targetRow, source.bits);
}

}  // namespace rasterkit::detail
