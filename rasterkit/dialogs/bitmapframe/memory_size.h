#pragma once

#include <string>

namespace rasterkit {

/// An amount of memory in a readable form.
struct MemorySize {
  std::string number;
  /// "byte" up to 10000, "kB" (1000 bytes, no decimals) up to one million, "MB" (two decimals with
  /// DecimalMark) above.
  std::string unit;
};

/// Returns the memory of the pixels of a picture without row padding; `bits` is the number of bits
/// per pixel. Computed in single precision.
MemorySize MemorySizeOf(int bits, int width, int height);

}  // namespace rasterkit
