#include <algorithm>
#include <optional>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_places.h>

namespace rasterkit {
namespace {

using detail::ByteRange;

/// A range and the place of the offset that leads to it.
struct Movable {
  ByteRange range;
  size_t pointerAt = 0;
};

/// Joins ranges that touch or overlap.
std::vector<ByteRange> Joined(std::vector<ByteRange> ranges) {
  std::sort(ranges.begin(), ranges.end(),
            [](const ByteRange& a, const ByteRange& b) { return a.at < b.at; });
  std::vector<ByteRange> joined;
  for (const ByteRange& range : ranges) {
    if (!joined.empty() && range.at <= joined.back().End()) {
      joined.back().size = std::max(joined.back().End(), range.End()) - joined.back().at;
    } else {
      joined.push_back(range);
    }
  }
  return joined;
}

/// The first even place for `range` in a gap in front of it, or in one that ends where it begins.
std::optional<ByteRange> RoomFor(const std::vector<ByteRange>& gaps, const ByteRange& range) {
  for (const ByteRange& gap : gaps) {
    const size_t at = gap.at + gap.at % 2;
    const size_t end = gap.End() == range.at ? range.End() : std::min(gap.End(), range.at);
    if (at < range.at && at + range.size <= end) return ByteRange{at, range.size};
  }
  return std::nullopt;
}

}  // namespace

/// Moves the table or the values at the end of the block to the front, if there is room.
bool ExifBlock::MoveLastToGap() {
  std::optional<Movable> last;
  const auto take = [&](const ByteRange& range, size_t pointerAt) {
    if (!last || range.End() > last->range.End()) last = Movable{range, pointerAt};
  };
  for (const Directory& directory : directories_) {
    // Readers would take what follows for a link that is missing.
    take(directory.Whole(), directory.HasNext() ? directory.pointerAt : 0);
    for (const Entry& entry : directory.entries) {
      constexpr size_t kToOffset = 8;
      // Offsets in a maker note count from its place.
      const bool isFixed = entry.tag == exif::kMakerNote;
      if (!entry.IsInline()) take(entry.Values(), isFixed ? 0 : entry.entryAt + kToOffset);
    }
  }
  for (const ByteRange& thumbnail : ThumbnailRanges()) take(thumbnail, 0);
  if (!last || last->pointerAt == 0 || UsersOf(last->range).size() != 1) return false;
  free_ = Joined(std::move(free_));
  const auto room = RoomFor(free_, last->range);
  if (!room) return false;
  // Where it overlaps its old place, that one is a user.
  const size_t users = room->Overlaps(last->range) ? 1 : 0;
  if (UsersOf(*room).size() != users) return false;
  const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(last->range.at);
  std::copy(first, first + static_cast<std::ptrdiff_t>(room->size),
            bytes_.begin() + static_cast<std::ptrdiff_t>(room->at));
  PutLongAt(last->pointerAt, static_cast<uint32_t>(room->at));
  const auto gap = std::find_if(free_.begin(), free_.end(),
                                [&](const ByteRange& one) { return one.Overlaps(*room); });
  const ByteRange rest = {room->End(), gap->End() - std::min(room->End(), gap->End())};
  *gap = {gap->at, room->at - gap->at};
  free_.push_back(rest);
  std::erase_if(free_, [](const ByteRange& one) { return one.size == 0; });
  Walk();
  Free(last->range);
  DropFreeEnd();
  return true;
}

void ExifBlock::ShrinkTo(size_t most) {
  if (bytes_.size() <= most || isDamaged_) return;
  const auto fill = [&] {
    while (bytes_.size() > most && MoveLastToGap()) {
    }
  };
  // A maker note may refer to bytes outside of itself.
  if (!Has(ExifDirectoryId::exif, exif::kMakerNote)) EraseUnused();
  fill();
  if (bytes_.size() <= most || !HasThumbnail()) return;
  RemoveThumbnail();
  fill();
}

}  // namespace rasterkit
