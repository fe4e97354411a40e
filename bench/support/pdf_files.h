#pragma once

#include <string>

namespace rasterkit::bench {

/// A plan of A0 size: 100,000 polylines of six points in many colors and widths.
std::string VectorPlan();

/// A4 pages of small print.
std::string TextPages();

/// A scanned A4 page: a gray picture of 2480 x 3508 pixels, not compressed.
std::string ScannedPage();

}  // namespace rasterkit::bench
