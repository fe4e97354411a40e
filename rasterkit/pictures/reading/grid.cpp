#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <rasterkit/pictures/reading/grid.h>
#include <rasterkit/runtime/half.h>

namespace rasterkit {
namespace {

template <class T>
T Read(const uint8_t* place) {
  T value;
  std::memcpy(&value, place, sizeof value);
  return value;
}

double ReadValue(GridType type, const uint8_t* place) {
  switch (type) {
    case GridType::float32:
      return static_cast<double>(Read<float>(place));
    case GridType::float64:
      return Read<double>(place);
    case GridType::float16:
      return HalfToDouble(Read<uint16_t>(place));
    case GridType::uint8:
      return Read<uint8_t>(place);
    case GridType::int8:
      return Read<int8_t>(place);
    case GridType::uint16:
      return Read<uint16_t>(place);
    case GridType::int16:
      return Read<int16_t>(place);
    case GridType::uint32:
      return Read<uint32_t>(place);
    case GridType::int32:
      return Read<int32_t>(place);
    case GridType::uint64:
      return static_cast<double>(Read<uint64_t>(place));
    default:
      return static_cast<double>(Read<int64_t>(place));
  }
}

}  // namespace

std::optional<GridType> GridTypeOf(WICPixelFormat format) {
  switch (format) {
    case GUID_WICPixelFormat32bppGrayFloat:
      return GridType::float32;
    case GUID_WICPixelFormat16bppGrayHalf:
      return GridType::float16;
    case GUID_WICPixelFormat16bppGray:
      return GridType::uint16;
    case GUID_WICPixelFormat16bppGrayFixedPoint:
      return GridType::int16;
    default:
      return std::nullopt;
  }
}

const char* GridTypeName(GridType type) {
  constexpr const char* kNames[] = {"uint8",  "int8",  "uint16",  "int16",   "uint32", "int32",
                                    "uint64", "int64", "float16", "float32", "float64"};
  return kNames[static_cast<int>(type)];
}

bool Grid::Holds(double column, double row) const {
  return column >= 0 && row >= 0 && column < Width() && row < Height();
}

double Grid::At(int column, int row) const {
  const auto x = static_cast<size_t>(column);
  return numbers_ ? ReadValue(type_, numbers_->Row(row) + x * numbers_->PixelBytes())
                  : ReadValue(type_, rows_.Row(row) + x * BytesOf(type_));
}

GridStatistics Summarize(const Grid& grid, const NoData& noData) {
  GridStatistics result;
  double minimum = std::numeric_limits<double>::infinity(), maximum = -minimum, sum = 0;
  for (int y = 0; y < grid.Height(); ++y) {
    double sumOfRow = 0;
    for (int x = 0; x < grid.Width(); ++x) {
      const double value = grid.At(x, y);
      if (noData.Is(value)) {
        ++result.noData;
      } else if (!std::isfinite(value)) {
        ++result.notFinite;
      } else {
        ++result.values;
        minimum = std::min(minimum, value);
        maximum = std::max(maximum, value);
        sumOfRow += value;
      }
    }
    sum += sumOfRow;
  }
  if (result.values == 0) return result;
  result.minimum = minimum;
  result.maximum = maximum;
  result.mean = sum / static_cast<double>(result.values);
  return result;
}

}  // namespace rasterkit
