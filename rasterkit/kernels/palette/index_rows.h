#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Rows of palette indexes, changed in place; exactly `count` bytes are touched.
namespace rasterkit::kernels {

/// Some of the 256 indexes; none to begin with.
class IndexSet {
 public:
  void Add(uint8_t index) {
    uint8_t& byte = bits_[Place(index)];
    byte = static_cast<uint8_t>(byte | Bit(index));
  }
  bool Has(uint8_t index) const { return (bits_[Place(index)] & Bit(index)) != 0; }

  /// 16 bytes for the indexes below 128 and 16 for the others: one for each low nibble, in it a bit
  /// for each high nibble. Vector shuffles look them up.
  const uint8_t* Bits() const { return bits_.data(); }

 private:
  static size_t Place(uint8_t index) { return index / 128 * 16u + index % 16u; }
  static unsigned Bit(uint8_t index) { return 1u << (index / 16 % 8); }

  std::array<uint8_t, 32> bits_{};
};

/// Each byte that is in `set` becomes `index`.
void ReplaceIndexes(uint8_t* indexes, size_t count, const IndexSet& set, uint8_t index);

/// Each byte that is `a` becomes `b`, and each that is `b` becomes `a`.
void SwapIndexes(uint8_t* indexes, size_t count, uint8_t a, uint8_t b);

/// Bytes of two 4-bit pixels: each but 0 becomes two times what `map` (numbers below 16) has for
/// its high nibble. Bytes that are 0 stay; the low nibble has no say.
void MapNibblePairs(uint8_t* pairs, size_t count, const std::array<uint8_t, 16>& map);

}  // namespace rasterkit::kernels
