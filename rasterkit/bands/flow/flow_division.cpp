#include <algorithm>

#include <rasterkit/bands/flow/flow_division.h>

namespace rasterkit::detail {
namespace {

/// Blocks of the source above this size are not kept whole: the reader goes on inside of them.
constexpr uint64_t kMostBlockBytes = uint64_t{24} << 20;
/// The same where rows are only handed on: else the reader and the writer would keep them both.
constexpr uint64_t kMostHandedBytes = uint64_t{104} << 20;

int BlockRowsOf(const RowChain& chain) {
  if (chain.firstLevel > 0) return 1;
  const int rows = std::clamp(chain.source->BlockRows(), 1, std::max(1, chain.source->Height()));
  const uint64_t bytes = static_cast<uint64_t>(rows) * chain.RowBytes(0);
  return bytes <= (chain.works.empty() ? kMostHandedBytes : kMostBlockBytes) ? rows : 1;
}

/// Bytes that all levels hold for a row of the result.
double BytesOfRow(const RowChain& chain, RowRange rows) {
  RowRange part = rows;
  double bytes = 0;
  for (size_t level = chain.LastLevel();; --level) {
    bytes += static_cast<double>(chain.RowBytes(level)) * std::max(1, part.count);
    if (level == chain.firstLevel) break;
    const BandRect need =
        chain.works[level - 1]->Needs({0, part.first, chain.SizeOf(level).width, part.count});
    part = {need.top, need.height};
  }
  return bytes / std::max(1, rows.count);
}

}  // namespace

BandDivision DivisionOf(const RowChain& chain, RowRange rows, int height, uint64_t bytes) {
  BandDivision division{rows, height, BlockRowsOf(chain)};
  if (height > 0) return division;
  const double fitting = static_cast<double>(bytes) / std::max(1.0, BytesOfRow(chain, rows));
  division.height = static_cast<int>(std::clamp(fitting, 1.0, std::max(1.0, double(rows.count))));
  if (chain.works.empty() && chain.source->Access() != RowAccess::rising) {
    division.height = std::max(division.height, division.blockRows);
  }
  return division;
}

bool HasLargeBlocks(const RowChain& chain) {
  return chain.firstLevel == 0 &&
         static_cast<uint64_t>(std::max(1, chain.source->BlockRows())) * chain.RowBytes(0) >
             kMostBlockBytes;
}

BandDivision DivisionOf(const RowChain& chain, int height, uint64_t bytes) {
  return DivisionOf(chain, {0, chain.Size().height}, height, bytes);
}

}  // namespace rasterkit::detail
