#include <algorithm>

#include <rasterkit/raster/nearest_color.h>

namespace rasterkit {
namespace {

using Candidate = kernels::CellCandidate;

constexpr int kGroupSide = 16;
constexpr int kGroupsASide = 256 / kGroupSide;

// Enough for the colors of most photographs; memory that is not written to costs nothing.
constexpr size_t kUsualAnswers = size_t{1} << 22;

// The caches of a processor serve a table of this size fast enough.
constexpr size_t kCachedAnswers = size_t{1} << 22;

constexpr int Square(int value) {
  return value * value;
}

// Squared distance on one axis from `value` to the nearest and to the farthest point of a cube that
// starts at `low`.
struct AxisRange {
  int nearest, farthest;
};

// All from the doubled distance to the cube's middle.
AxisRange DistanceToCube(int value, int low, int side) {
  const int middle = std::abs(2 * (value - low) - (side - 1));
  return {Square(std::max(middle - (side - 1), 0) / 2), Square((middle + side - 1) / 2)};
}

// Appends the entries of `from` that can be nearest to a color of a cube. A candidate is excluded
// if even its nearest point of the cube is farther than the farthest point of another.
void Append(std::span<const Candidate> from, int blue, int green, int red, int side,
            std::vector<Candidate>& to) {
  std::array<int, 256> nearest;
  int bound = INT32_MAX;
  for (size_t i = 0; i < from.size(); ++i) {
    const AxisRange r = DistanceToCube(from[i].red, red, side);
    const AxisRange g = DistanceToCube(from[i].green, green, side);
    const AxisRange b = DistanceToCube(from[i].blue, blue, side);
    nearest[i] = r.nearest + g.nearest + b.nearest;
    bound = std::min(bound, r.farthest + g.farthest + b.farthest);
  }
  for (size_t i = 0; i < from.size(); ++i) {
    if (nearest[i] <= bound) to.push_back(from[i]);
  }
}

}  // namespace

NearestColor::NearestColor(std::span<const tagPALETTEENTRY> entries)
    : groups_(kGroupsASide * kGroupsASide * kGroupsASide),
      blocks_(32 * 32 * 32),
      answers_(kernels::kCellColors) {
  answers_.reserve(kUsualAnswers);
  for (size_t i = 0; i < std::min<size_t>(entries.size(), 256); ++i) {
    const auto sameColor = [&](const Candidate& entry) {
      return entry.red == entries[i].peRed && entry.green == entries[i].peGreen &&
             entry.blue == entries[i].peBlue;
    };
    if (std::ranges::any_of(entries_, sameColor)) continue;  // the lower index wins anyway
    entries_.push_back(
        {entries[i].peBlue, entries[i].peGreen, entries[i].peRed, static_cast<uint8_t>(i)});
  }
  if (entries_.empty()) entries_.push_back({});
}

void NearestColor::OfRow(const RGBArec* pixels, size_t count, uint8_t* indexes) {
  places_.resize(std::max(places_.size(), count));
  kernels::CellPlaces(reinterpret_cast<const uint8_t*>(pixels), count, places_.data());
  if (answers_.size() < kCachedAnswers) return AnswerFromCache(places_.data(), count, indexes);
  for (size_t first = 0; first < count; first += kTogether) {
    AnswerRun(places_.data() + first, std::min(kTogether, count - first), indexes + first);
  }
}

void NearestColor::AnswerFromCache(const uint32_t* places, size_t count, uint8_t* indexes) {
  // Local copies: the written indexes could alias these members.
  uint32_t* blocks = blocks_.data();
  const uint8_t* answers = answers_.data();
  for (size_t i = 0; i < count; ++i) {
    const uint32_t cell = places[i] / kernels::kCellColors;
    if (blocks[cell] == 0) [[unlikely]] {
      blocks[cell] = AnswerCell(cell);
      answers = answers_.data();
    }
    indexes[i] =
        answers[size_t{blocks[cell]} * kernels::kCellColors + places[i] % kernels::kCellColors];
  }
}

void NearestColor::AnswerRun(const uint32_t* places, size_t count, uint8_t* indexes) {
  // Answers lie all over a table that no cache holds: all of a run are on their way before the
  // first one is read.
  std::array<size_t, kTogether> found;
  for (size_t i = 0; i < count; ++i) {
    uint32_t& block = blocks_[places[i] / kernels::kCellColors];
    if (block == 0) [[unlikely]] {
      block = AnswerCell(places[i] / kernels::kCellColors);
    }
    found[i] = size_t{block} * kernels::kCellColors + places[i] % kernels::kCellColors;
    __builtin_prefetch(answers_.data() + found[i]);
  }
  const uint8_t* answers = answers_.data();
  for (size_t i = 0; i < count; ++i) indexes[i] = answers[found[i]];
}

uint32_t NearestColor::AnswerCell(uint32_t cell) {
  const int red = static_cast<int>(cell >> 10) * kernels::kCellSide;
  const int green = static_cast<int>(cell >> 5 & 31) * kernels::kCellSide;
  const int blue = static_cast<int>(cell & 31) * kernels::kCellSide;
  const Group group = GroupOf(blue, green, red);
  inReach_.clear();
  Append({candidates_.data() + group.first, group.count}, blue, green, red, kernels::kCellSide,
         inReach_);
  const size_t place = answers_.size();
  answers_.resize(place + kernels::kCellColors);
  kernels::AnswerCell(inReach_.data(), inReach_.size(), blue, green, red, answers_.data() + place);
  return static_cast<uint32_t>(place / kernels::kCellColors);
}

NearestColor::Group& NearestColor::GroupOf(int blue, int green, int red) {
  const auto number = static_cast<size_t>(
      (red / kGroupSide * kGroupsASide + green / kGroupSide) * kGroupsASide + blue / kGroupSide);
  Group& group = groups_[number];
  if (group.count == 0) {
    group.first = static_cast<uint32_t>(candidates_.size());
    Append(entries_, blue & -kGroupSide, green & -kGroupSide, red & -kGroupSide, kGroupSide,
           candidates_);
    group.count = static_cast<uint32_t>(candidates_.size()) - group.first;
  }
  return group;
}

}  // namespace rasterkit
