#pragma once

#include <cmath>
#include <cstdint>

namespace rasterkit {

/// Rounds to the nearest integer, halves to even: Round(2.5) = 2, Round(3.5) = 4.
/// `value` must fit into 64 bits. Requires the processor's default rounding mode.
inline int64_t Round(double value) {
  return std::llrint(value);
}

/// Cuts toward zero: Trunc(-1.9) = -1.
inline int64_t Trunc(double value) {
  return static_cast<int64_t>(value);
}

}  // namespace rasterkit
