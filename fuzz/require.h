#pragma once

#include <cstdlib>

/// Aborts if a property does not hold: that is how a fuzz target reports a fault.
inline void Require(bool holds) {
  if (!holds) std::abort();
}
