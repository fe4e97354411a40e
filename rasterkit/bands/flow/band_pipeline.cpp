#include <algorithm>

#include <rasterkit/bands/flow/band_pipeline.h>
#include <rasterkit/bands/flow/foretold_rows.h>
#include <rasterkit/bands/flow/memory_rows.h>
#include <rasterkit/bands/stage/row_work.h>

namespace rasterkit::detail {
namespace {

/// Rows that are held over make up more than this part of a window: it gets room for more rows, so
/// that they are not moved for each band.
constexpr int kPartKept = 4;
/// Larger windows are not doubled.
constexpr uint64_t kMostDoubled = uint64_t{20} << 20;
/// Parts of a band per thread, so that all threads end at about the same time.
constexpr int kPiecesPerThread = 3;

/// Rows of a window.
int CapacityFor(const BandPlan& plan, size_t level) {
  const int most = plan.MostRows(level);
  if (plan.MostKept(level) <= most / kPartKept) return most;
  return most + std::max(most / 2, most - plan.MostKept(level));
}

/// Rows that will be used where they are.
bool IsForetoldMemory(const RowChain& chain) {
  const auto* foretold = dynamic_cast<const ForetoldRows*>(chain.source.get());
  return foretold != nullptr && foretold->IsInMemory();
}

}  // namespace

BandPipeline::BandPipeline(const RowChain& chain, const BandDivision& division, bool isDouble)
    : chain_(chain), plan_(chain, division), windows_(chain.LastLevel() + 1) {
  for (size_t level = chain.firstLevel; level <= chain.LastLevel(); ++level) {
    const bool isForetold = level == 0 && IsForetoldMemory(chain);
    const int capacity = isForetold ? 1 : CapacityFor(plan_, level);
    const uint64_t bytes = chain.RowBytes(level) * static_cast<uint64_t>(capacity);
    const size_t count = isDouble && bytes <= kMostDoubled ? 2 : 1;
    for (size_t i = 0; i < count; ++i) {
      windows_[level].emplace_back(chain.LikeOf(level), chain.SizeOf(level), capacity);
    }
  }
  if (chain.firstLevel > 0) {
    parts_ = std::make_unique<PartMaker>(chain, chain.firstLevel,
                                         windows_[chain.firstLevel].front().Capacity());
  } else if (auto* memory = dynamic_cast<MemoryRows*>(chain.source.get())) {
    windows_[0].clear();
    windows_[0].emplace_back(memory->Whole());
    isSourceWhole_ = true;
  }
}

void BandPipeline::KeepIn(Pixels& whole) {
  windows_.back().clear();
  windows_.back().emplace_back(whole);
  isKept_ = true;
  if (chain_.LastLevel() == 0) isSourceWhole_ = false;
}

bool BandPipeline::IsWhole(size_t level) const {
  return (level == 0 && isSourceWhole_) || (level == chain_.LastLevel() && isKept_);
}

uint64_t BandPipeline::BytesOfWindows(int threads) const {
  uint64_t bytes = 0;
  for (const std::vector<RowWindow>& windows : windows_) {
    for (const RowWindow& window : windows) bytes += window.Bytes();
  }
  if (!parts_) return bytes;
  const int rows = windows_[chain_.firstLevel].front().Capacity();
  return bytes + static_cast<uint64_t>(threads) * parts_->BytesOfPart(rows);
}

void BandPipeline::Place(size_t level, const LevelRows& rows, size_t window, size_t before) {
  windows_[level][window].Place(rows, windows_[level][before]);
}

int BandPipeline::Pieces(size_t level, const LevelRows& rows, int threads) const {
  if (level == 0 && isSourceWhole_) return 0;
  if (rows.missing.count == 0) return 0;
  if (level == 0) return 1;
  if (level == chain_.firstLevel) return parts_->Columns();
  const BandWork& work = *chain_.works[level - 1];
  int piece = work.RowsOfPiece();
  if (piece <= 0) {
    const int count = rows.missing.count;
    const uint64_t bytes = chain_.RowBytes(level) + chain_.RowBytes(level - 1);
    const int share = (count - 1) / (kPiecesPerThread * threads) + 1;
    piece = std::min(threads > 1 ? share : count, PieceOf(count, static_cast<size_t>(bytes)));
  }
  return (rows.missing.count - 1) / piece + 1;
}

void BandPipeline::ReadRows(RowRange missing, RowWindow& window) {
  window.With(missing, false, true,
              [&](Pixels& rows) { chain_.source->Read(0, missing.first, rows); });
}

void BandPipeline::MakePiece(size_t level, const LevelRows& rows, size_t window,
                             size_t sourceWindow, int piece, int pieces) {
  RowWindow& made = windows_[level][window];
  if (level == 0) return ReadRows(rows.missing, made);
  Band& target = made.Rows();
  if (level == chain_.firstLevel) return parts_->Make(target, rows.missing, piece);
  const int64_t count = rows.missing.count;
  const int first = static_cast<int>(count * piece / pieces);
  const int end = static_cast<int>(count * (piece + 1) / pieces);
  chain_.works[level - 1]->Make(windows_[level - 1][sourceWindow].Rows(), target,
                                {rows.missing.first + first, end - first});
}

void BandPipeline::Hand(RowRange band, size_t window, const TakeRows& take) {
  if (!take) return;
  auto* memory = dynamic_cast<MemoryRows*>(chain_.source.get());
  if (isSourceWhole_ && chain_.works.empty() && !memory->MayChange()) {
    Pixels copy = NewPixels(memory->Like(), memory->Width(), band.count);
    memory->Read(0, band.first, copy);
    return take(copy, band.first);
  }
  windows_.back()[window].With(band, true, false, [&](Pixels& rows) { take(rows, band.first); });
}

}  // namespace rasterkit::detail
