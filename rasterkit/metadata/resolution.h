#pragma once

namespace rasterkit {

/// Dots per inch in both directions; 0 if unknown.
struct Resolution {
  double x = 0, y = 0;
  bool IsKnown() const { return x > 0 && y > 0; }
  friend bool operator==(const Resolution&, const Resolution&) = default;
};

}  // namespace rasterkit
