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

GridNumber ReadNumber(GridType type, const uint8_t* place) {
  switch (type) {
    case GridType::float32:
      return static_cast<double>(Read<float>(place));
    case GridType::float64:
      return Read<double>(place);
    case GridType::float16:
      return HalfToDouble(Read<uint16_t>(place));
    case GridType::uint8:
      return uint64_t{Read<uint8_t>(place)};
    case GridType::int8:
      return int64_t{Read<int8_t>(place)};
    case GridType::uint16:
      return uint64_t{Read<uint16_t>(place)};
    case GridType::int16:
      return int64_t{Read<int16_t>(place)};
    case GridType::uint32:
      return uint64_t{Read<uint32_t>(place)};
    case GridType::int32:
      return int64_t{Read<int32_t>(place)};
    case GridType::uint64:
      return Read<uint64_t>(place);
    default:
      return Read<int64_t>(place);
  }
}

/// Statistics of numbers that all have one type.
template <class T>
GridStatistics SummarizeAs(const Grid& grid, const NoData& noData, int band) {
  GridStatistics result;
  T least{}, greatest{};
  double sum = 0;
  for (int y = 0; y < grid.Height(); ++y) {
    double sumOfRow = 0;
    for (int x = 0; x < grid.Width(); ++x) {
      const T number = std::get<T>(grid.NumberAt(x, y, band));
      const auto value = static_cast<double>(number);
      if (noData.Is(number)) {
        ++result.noData;
      } else if (!std::isfinite(value)) {
        ++result.notFinite;
      } else {
        least = result.values == 0 ? number : std::min(least, number);
        greatest = result.values == 0 ? number : std::max(greatest, number);
        ++result.values;
        sumOfRow += value;
      }
    }
    sum += sumOfRow;
  }
  if (result.values == 0) return result;
  result.least = least;
  result.greatest = greatest;
  result.minimum = static_cast<double>(least);
  result.maximum = static_cast<double>(greatest);
  result.mean = sum / static_cast<double>(result.values);
  return result;
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
  return DoubleOf(NumberAt(column, row, 0));
}

GridNumber Grid::NumberAt(int column, int row, int band) const {
  const auto x = static_cast<size_t>(column);
  if (!numbers_) return ReadNumber(type_, rows_.Row(row) + x * BytesOf(type_));
  const size_t size = BytesOf(type_), pixel = numbers_->PixelBytes();
  if (numbers_->Planes() > 1) return ReadNumber(type_, numbers_->Row(row, band) + x * pixel);
  return ReadNumber(type_, numbers_->Row(row) + x * pixel + static_cast<size_t>(band) * size);
}

double DoubleOf(const GridNumber& number) {
  return std::visit([](auto value) { return static_cast<double>(value); }, number);
}

GridStatistics Summarize(const Grid& grid, const NoData& noData, int band) {
  return std::visit([&](auto first) { return SummarizeAs<decltype(first)>(grid, noData, band); },
                    grid.NumberAt(0, 0, band));
}

}  // namespace rasterkit
