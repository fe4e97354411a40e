#include <algorithm>
#include <string>

#include <rasterkit/bands/flow/band_plan.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

int EndOf(RowRange rows) {
  return rows.first + rows.count;
}

RowRange FromTo(int first, int end) {
  return {first, end - first};
}

}  // namespace

BandPlan::BandPlan(const RowChain& chain, const BandDivision& division)
    : chain_(chain),
      division_(division),
      mostRows_(chain.LastLevel() + 1),
      mostKept_(chain.LastLevel() + 1) {
  RowRange rows = division.rows;
  for (size_t level = chain.LastLevel(); level > chain.firstLevel; --level) {
    rows = NeededFor(level, rows);
  }
  all_ = rows;
  Measure();
  Restart();
}

void BandPlan::Restart() {
  held_.assign(chain_.LastLevel() + 1, {});
  next_ = division_.rows.first;
}

/// Bands of rows that come from the reader unchanged end where its blocks end.
RowRange BandPlan::BandFrom(int first) const {
  int end = std::min(EndOf(division_.rows), first + std::max(1, division_.height));
  if (chain_.LastLevel() == 0 && end < EndOf(division_.rows)) {
    const int aligned = end / division_.blockRows * division_.blockRows;
    if (aligned > first) end = aligned;
  }
  return FromTo(first, end);
}

/// The rows of the level below.
RowRange BandPlan::NeededFor(size_t level, RowRange rows) const {
  if (rows.count == 0) return {};
  const Sides source = chain_.SizeOf(level - 1);
  const BandRect need =
      chain_.works[level - 1]->Needs({0, rows.first, chain_.SizeOf(level).width, rows.count});
  if (need.height == 0 || need.width == 0) return {};
  if (need.top < 0 || need.height < 0 || need.top > source.height ||
      need.height > source.height - need.top) {
    throw RangeError("a stage needs the rows " + std::to_string(need.top) + " to " +
                     std::to_string(need.top + need.height) + " of a picture that has " +
                     std::to_string(source.height));
  }
  return {need.top, need.height};
}

RowRange BandPlan::WithBlocks(RowRange wanted) const {
  const int block = division_.blockRows;
  if (block <= 1 || wanted.count == 0 || chain_.LastLevel() == 0) return wanted;
  if (isBackward_) {
    return FromTo(std::max(all_.first, wanted.first / block * block), EndOf(wanted));
  }
  const int64_t end = (int64_t{EndOf(wanted)} + block - 1) / block * block;
  return FromTo(wanted.first,
                std::max(EndOf(wanted), static_cast<int>(std::min<int64_t>(EndOf(all_), end))));
}

/// Rows that the level holds stay if they adjoin those that are wanted.
void BandPlan::Hold(size_t level, RowRange wanted, LevelRows& rows) {
  if (wanted.count == 0) {
    rows = {};
    return;
  }
  const RowRange held = held_[level];
  if (level == 0) wanted = WithBlocks(wanted);
  RowRange missing = wanted;
  if (held.count > 0 && held.first <= wanted.first && wanted.first < EndOf(held)) {
    wanted = FromTo(wanted.first, std::max(EndOf(wanted), EndOf(held)));
    missing = FromTo(EndOf(held), EndOf(wanted));
  } else if (held.count > 0 && held.first < EndOf(wanted) && EndOf(wanted) <= EndOf(held)) {
    missing = FromTo(wanted.first, held.first);
  }
  held_[level] = wanted;
  rows = {wanted, missing};
}

std::optional<BandStep> BandPlan::Next() {
  if (next_ >= EndOf(division_.rows)) return std::nullopt;
  BandStep step{BandFrom(next_), std::vector<LevelRows>(chain_.LastLevel() + 1)};
  next_ = EndOf(step.band);
  RowRange wanted = step.band;
  for (size_t level = chain_.LastLevel();; --level) {
    Hold(level, wanted, step.levels[level]);
    if (level == chain_.firstLevel) return step;
    wanted = NeededFor(level, step.levels[level].missing);
  }
}

/// Walks over all bands once.
void BandPlan::Measure() {
  const size_t low = chain_.firstLevel;
  bool isFalling = true;
  for (int pass = 0; pass < 2; ++pass) {
    Restart();
    count_ = 0;
    std::fill(mostRows_.begin(), mostRows_.end(), 0);
    std::fill(mostKept_.begin(), mostKept_.end(), 0);
    RowRange before;
    while (const std::optional<BandStep> step = Next()) {
      ++count_;
      for (size_t level = low; level <= chain_.LastLevel(); ++level) {
        const LevelRows& rows = step->levels[level];
        mostRows_[level] = std::max(mostRows_[level], rows.wanted.count);
        mostKept_[level] = std::max(mostKept_[level], rows.wanted.count - rows.missing.count);
      }
      const RowRange made = step->levels[low].missing;
      if (made.count == 0) continue;
      if (before.count > 0) {
        isRising_ = isRising_ && made.first >= EndOf(before);
        isFalling = isFalling && EndOf(made) <= EndOf(before) && made.first < before.first;
      }
      before = made;
    }
    // Blocks are completed towards the direction, which the first pass has found.
    if (isRising_ || !isFalling || isBackward_) return;
    isBackward_ = true;
    isRising_ = false;
  }
}

}  // namespace rasterkit::detail
