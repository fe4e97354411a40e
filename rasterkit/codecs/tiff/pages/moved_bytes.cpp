#include <algorithm>

#include <rasterkit/codecs/tiff/pages/moved_bytes.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

constexpr uint64_t kPieceBytes = 1 << 20;
/// How often the bytes of a source may be copied: pages can share a part of a strip.
constexpr uint64_t kMostCopies = 2;
/// What a map takes beside each range.
constexpr uint64_t kNodeBytes = 48;

}  // namespace

void MovedBytes::Add(const TagReader& reader, uint64_t at, uint64_t count) {
  if (at > reader.Size() || count > reader.Size() - at) {
    throw FormatError("TIFF: a strip or tile reaches beyond the end of the file");
  }
  // Strips mostly follow each other.
  if (!ranges_.empty() && ranges_.back().end == at) {
    ranges_.back().end = at + count;
    return;
  }
  ranges_.push_back({at, at + count, 0});
  RequirePictureMemory(ranges_.size() * sizeof(Range), "TIFF: the list of strips and tiles");
}

void MovedBytes::Merge() {
  std::sort(ranges_.begin(), ranges_.end(),
            [](const Range& a, const Range& b) { return a.at < b.at; });
  std::vector<Range> merged;
  for (const Range& range : ranges_) {
    if (!merged.empty() && range.at <= merged.back().end) {
      merged.back().end = std::max(merged.back().end, range.end);
    } else {
      merged.push_back(range);
    }
  }
  ranges_ = std::move(merged);
}

const MovedBytes::Range* MovedBytes::Earlier(const Range& range) const {
  auto next = earlier_.upper_bound(range.at);
  if (next == earlier_.begin()) return nullptr;
  const Range& before = (--next)->second;
  return range.end <= before.end ? &before : nullptr;
}

uint64_t MovedBytes::Total() {
  Merge();
  uint64_t total = 0;
  for (const Range& range : ranges_) {
    if (!Earlier(range)) total += range.end - range.at + 1;
  }
  return total;
}

void MovedBytes::Copy(const TagReader& reader, TagFileWriter& file) {
  Merge();
  std::vector<uint8_t> piece;
  for (Range& range : ranges_) {
    if (const Range* earlier = Earlier(range)) {
      range.newAt = earlier->newAt + (range.at - earlier->at);
      continue;
    }
    copied_ += range.end - range.at;
    if (copied_ / kMostCopies > reader.Size()) {
      throw FormatError("TIFF: pages of the file share their strips or tiles in part");
    }
    for (uint64_t at = range.at; at < range.end || range.newAt == 0;) {
      RequireTime();
      piece.resize(static_cast<size_t>(std::min(kPieceBytes, range.end - at)));
      if (!reader.ReadAt(at, piece)) throw FormatError("TIFF: the file ends early");
      // Pieces of an even number of bytes follow each other without a gap.
      const uint64_t newAt = file.Append(piece);
      if (range.newAt == 0) range.newAt = newAt;
      at += piece.size();
    }
    Range& known = earlier_[range.at];
    if (known.end <= range.end) known = range;
  }
  RequirePictureMemory(earlier_.size() * (sizeof(Range) + kNodeBytes),
                       "TIFF: the list of strips and tiles");
}

uint64_t MovedBytes::PlaceOf(uint64_t at) const {
  if (at == 0) return 0;
  auto next = std::upper_bound(ranges_.begin(), ranges_.end(), at,
                               [](uint64_t place, const Range& range) { return place < range.at; });
  if (next == ranges_.begin()) return 0;
  const Range& range = *--next;
  return at <= range.end ? range.newAt + (at - range.at) : 0;
}

}  // namespace rasterkit::detail
