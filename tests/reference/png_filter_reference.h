#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

/// The rule, byte by byte: what a filter guesses from the bytes on the left, above and above left,
/// which are 0 outside of the row.
namespace rasterkit::reference {

inline int GuessOfFilter(int filter, int left, int above, int corner) {
  if (filter == 1) return left;
  if (filter == 2) return above;
  if (filter == 3) return (left + above) / 2;
  if (filter != 4) return 0;
  const int guess = left + above - corner;
  const int toLeft = std::abs(guess - left), toAbove = std::abs(guess - above);
  const int toCorner = std::abs(guess - corner);
  if (toLeft <= toAbove && toLeft <= toCorner) return left;
  return toAbove <= toCorner ? above : corner;
}

inline std::vector<uint8_t> Filtered(int filter, const std::vector<uint8_t>& row,
                                     const std::vector<uint8_t>& above, size_t pixelBytes) {
  std::vector<uint8_t> filtered(row.size());
  for (size_t i = 0; i < row.size(); ++i) {
    const bool isEdge = i < pixelBytes;
    const int left = isEdge ? 0 : row[i - pixelBytes], corner = isEdge ? 0 : above[i - pixelBytes];
    filtered[i] = static_cast<uint8_t>(row[i] - GuessOfFilter(filter, left, above[i], corner));
  }
  return filtered;
}

inline std::vector<uint8_t> Unfiltered(int filter, const std::vector<uint8_t>& filtered,
                                       const std::vector<uint8_t>& above, size_t pixelBytes) {
  std::vector<uint8_t> row(filtered.size());
  for (size_t i = 0; i < row.size(); ++i) {
    const bool isEdge = i < pixelBytes;
    const int left = isEdge ? 0 : row[i - pixelBytes], corner = isEdge ? 0 : above[i - pixelBytes];
    row[i] = static_cast<uint8_t>(filtered[i] + GuessOfFilter(filter, left, above[i], corner));
  }
  return row;
}

/// The sum of the absolute values of the bytes, taken as signed numbers.
inline uint64_t SumOfDifferences(const std::vector<uint8_t>& filtered) {
  uint64_t sum = 0;
  for (const uint8_t byte : filtered) {
    sum += static_cast<uint64_t>(std::abs(static_cast<int8_t>(byte)));
  }
  return sum;
}

}  // namespace rasterkit::reference
