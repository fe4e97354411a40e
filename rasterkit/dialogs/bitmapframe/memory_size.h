#pragma once

#include <string>

namespace rasterkit {

/// How much memory pixels take, as people read it.
struct MemorySize {
  std::string number;
  /// "byte" up to 10000, "kB" (1000 bytes, no decimals) up to a million, "MB" (two decimals, with
  /// DecimalMark between) above.
  std::string unit;
};

/// The pixels of a picture without row padding; `bits` a pixel. Counted in single precision.
MemorySize MemorySizeOf(int bits, int width, int height);

}  // namespace rasterkit
