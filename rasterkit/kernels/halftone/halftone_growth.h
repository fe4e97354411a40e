#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <rasterkit/kernels/halftone/halftone_axis.h>
#include <rasterkit/kernels/halftone/halftone_rows.h>

/// Halftone rows of pictures that do not shrink: each source row is stretched once, and each target
/// row mixes two of those. Everything fits words.
namespace rasterkit::kernels {

/// Four target pixels: where their source pixels are, from pixel `start` on, and how much the right
/// one of each two weighs.
struct GrowthBlock {
  int32_t start = 0;
  uint8_t order[16] = {};
  uint16_t rightWeights[16] = {};
};

struct GrowthPlan {
  std::vector<GrowthBlock> blocks;
  uint16_t total = 1;
};

/// For an axis whose taps have at most two positions and whose total fits a byte's 256 values.
GrowthPlan PlanGrowth(const HalftoneAxis& axis);

/// Weighted sums of two neighboring pixels B G R each. Up to kHalftonePadding elements beyond the
/// source row are read, and beyond the sums written.
void GrowRow(const uint8_t* pixels, const GrowthPlan& plan, uint16_t* sums);

/// Two rows of such sums, each times its weight, divided and rounded.
void MixRows(const uint16_t* upper, uint16_t upperWeight, const uint16_t* lower,
             uint16_t lowerWeight, size_t count, const WordDivisor& divisor, uint8_t* target);

}  // namespace rasterkit::kernels
