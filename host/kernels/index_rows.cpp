#include <rasterkit/host/kernels/index_rows.h>

namespace rasterkit::kernels {

void ReplaceIndexes(uint8_t* indexes, size_t count, const IndexSet& set, uint8_t index) {
  for (size_t i = 0; i < count; ++i) {
    if (set[indexes[i]]) indexes[i] = index;
  }
}

void SwapIndexes(uint8_t* indexes, size_t count, uint8_t a, uint8_t b) {
  for (size_t i = 0; i < count; ++i) {
    if (indexes[i] == a) {
      indexes[i] = b;
    } else if (indexes[i] == b) {
      indexes[i] = a;
    }
  }
}

void MapNibblePairs(uint8_t* pairs, size_t count, const std::array<uint8_t, 16>& map) {
  for (size_t i = 0; i < count; ++i) {
    if (pairs[i] != 0) pairs[i] = static_cast<uint8_t>(17 * map[pairs[i] >> 4]);
  }
}

}  // namespace rasterkit::kernels
