#include <algorithm>
#include <cstring>

#include <rasterkit/kernels/bits/bit_means.h>
#include <rasterkit/kernels/halftone/halftone_rows.h>

namespace rasterkit::kernels {

namespace {

/// Sums of grays up to this total fit 32 bits, as DivideSums needs them.
constexpr uint64_t kMostTotal = 0xFFFFFFFFu / 256;
constexpr int kMostCount = 255;

/// Bits of the groups if each tap is one, all of which weigh 1; else 0.
int GroupOf(const HalftoneAxis& columns) {
  const int group = static_cast<int>(columns.total);
  // Taps whose inner bits weigh 1 of the whole factor are all alike, and rise or fall.
  if (!CountsGroupsOf(group) || columns.innerWeight != 1) return 0;
  const HalftoneTap &first = columns.taps.front(), &last = columns.taps.back();
  const auto count = static_cast<int64_t>(columns.taps.size());
  const bool areGroups = first.first == 0 && first.count == group &&
                         last.first == (count - 1) * group && last.count == group;
  return areGroups ? group : 0;
}

}  // namespace

BitMeans::BitMeans(const HalftoneAxis& columns, int width, uint32_t rowTotal, uint8_t grayOf0,
                   uint8_t grayOf1)
    : columns_(columns),
      total_(uint64_t{columns.total} * rowTotal),
      grayOf0_(grayOf0),
      grayOf1_(grayOf1),
      rowBytes_((static_cast<size_t>(width) + 7) / 8),
      row_(rowBytes_ + kBitRowPadding) {
  const size_t count = columns.taps.size();
  const bool sumsAreShort = total_ >= 2 && total_ <= kMostTotal;
  group_ = sumsAreShort ? GroupOf(columns) : 0;
  if (group_ > 0) {
    counts_.resize(rowBytes_ * 8 / static_cast<size_t>(group_) + kBitRowPadding);
  } else if (total_ >= 2 && ColumnTaps::Fits(columns)) {
    taps_.emplace(columns);
    columnSums_.resize(8 * rowBytes_ + kColumnPadding);
    columnsAreWeighted_ = rowTotal <= kLargestColumnSum && total_ <= INT32_MAX;
  }
  if (sumsAreShort || taps_) sums_.resize(count + kHalftonePadding);
  if (taps_ ? !columnsAreWeighted_ : !sumsAreShort) longSums_.resize(count);
}

void BitMeans::Add(const uint8_t* row, uint32_t weight) {
  if (group_ > 0) {
    if (counted_ > 0 && (weight != weight_ || (counted_ + 1) * group_ > kMostCount)) AddCounts();
    weight_ = weight;
    counted_++;
    AddGroupCounts(row, rowBytes_, group_, counts_.data());
    return;
  }
  if (taps_) return AddToRuns(row, weight);
  // Taps read words.
  std::memcpy(row_.data(), row, rowBytes_);
  if (longSums_.empty()) {
    AddTaps(row_.data(), columns_, weight, sums_.data());
  } else {
    AddTaps(row_.data(), columns_, weight, longSums_.data());
  }
}

void BitMeans::AddToRuns(const uint8_t* row, uint32_t weight) {
  const bool isNew =
      runs_.empty() || runWeights_.back() != weight || runs_.back().count == kMostRowsOfRun;
  if (isNew) {
    const auto ofColumns = static_cast<uint16_t>(columnsAreWeighted_ ? weight : 1);
    runs_.push_back({nullptr, 0, ofColumns});
    runWeights_.push_back(weight);
  }
  rows_.push_back(row);
  runs_.back().count++;
}

void BitMeans::FinishColumns(uint8_t* target) {
  const uint8_t* const* row = rows_.data();
  for (BitRun& run : runs_) {
    run.rows = row;
    row += run.count;
  }
  if (columnsAreWeighted_) {
    SumBitColumns(runs_.data(), runs_.size(), rowBytes_, columnSums_.data());
    taps_->Sum(columnSums_.data(), sums_.data());
    MeansOfOnes(sums_.data(), columns_.taps.size(), static_cast<uint32_t>(total_),
                {grayOf0_, grayOf1_}, target);
  } else {
    AddRunsToLongs();
    FinishLongs(target);
  }
  rows_.clear();
  runs_.clear();
  runWeights_.clear();
}

void BitMeans::AddRunsToLongs() {
  for (size_t i = 0; i < runs_.size(); ++i) {
    SumBitColumns(&runs_[i], 1, rowBytes_, columnSums_.data());
    taps_->Sum(columnSums_.data(), sums_.data());
    for (size_t x = 0; x < longSums_.size(); ++x) {
      longSums_[x] += uint64_t{runWeights_[i]} * sums_[x];
    }
  }
}

void BitMeans::AddCounts() {
  AddWeighted(counts_.data(), columns_.taps.size(), weight_, sums_.data());
  std::fill(counts_.begin(), counts_.end(), uint8_t{0});
  counted_ = 0;
}

void BitMeans::Finish(uint8_t* target) {
  if (taps_) return FinishColumns(target);
  if (!longSums_.empty()) return FinishLongs(target);
  if (counted_ > 0) AddCounts();
  const size_t count = columns_.taps.size();
  const auto total = static_cast<uint32_t>(total_);
  // Differences of grays can be negative; the sums are right in 32 bits.
  const uint32_t base = grayOf0_ * total;
  const auto step = static_cast<uint32_t>(grayOf1_ - grayOf0_);
  ScaleSums(sums_.data(), count, base, step);
  DivideSums(sums_.data(), count, total, target);
  std::fill(sums_.begin(), sums_.end(), 0u);
}

void BitMeans::FinishLongs(uint8_t* target) {
  const uint64_t base = grayOf0_ * total_ + total_ / 2;
  const auto step = static_cast<uint64_t>(int64_t{grayOf1_} - grayOf0_);
  const double part = 1.0 / static_cast<double>(total_);
  for (uint64_t& sum : longSums_) {
    const uint64_t dividend = base + step * sum;
    sum = 0;
    // Off by one at most.
    auto quotient = static_cast<int64_t>(static_cast<double>(dividend) * part);
    const auto rest = static_cast<int64_t>(dividend) - quotient * static_cast<int64_t>(total_);
    quotient += rest < 0 ? -1 : rest >= static_cast<int64_t>(total_) ? 1 : 0;
    *target++ = static_cast<uint8_t>(quotient);
  }
}

}  // namespace rasterkit::kernels
