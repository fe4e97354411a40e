// Bytes: tag number (2), type (1), count of bytes (2), bytes; and so on.

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/placement/placement.h>

#include "fuzz/require.h"

namespace {

using rasterkit::TagValue;

std::vector<TagValue> TagsIn(std::span<const uint8_t> bytes) {
  constexpr size_t kHead = 5;
  std::vector<TagValue> tags;
  while (bytes.size() >= kHead && tags.size() < 20) {
    TagValue tag;
    tag.tag = static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
    tag.type = bytes[2];
    const size_t count = std::min<size_t>(bytes[3] | bytes[4] << 8, bytes.size() - kHead);
    tag.count = count;
    tag.bytes.assign(bytes.begin() + kHead, bytes.begin() + static_cast<ptrdiff_t>(kHead + count));
    bytes = bytes.subspan(kHead + count);
    tags.push_back(std::move(tag));
  }
  return tags;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using rasterkit::Placement;
  Placement placement = rasterkit::ReadPlacement("", TagsIn({data, size}), 100, 50);
  if (placement.affine) Require(placement.affine->IsFinite());
  placement.system.Description();
  const Placement again = rasterkit::ReadPlacement("", rasterkit::TagsOf(placement), 100, 50);
  Require(again.system.keys == placement.system.keys);
  Require(again.system.ascii == placement.system.ascii);
  Require(again.controlPoints.size() == placement.controlPoints.size());
  rasterkit::Changes changes;
  rasterkit::FollowPixels(placement, {{0, 1, -1, 0, 99, 0}, 100, 50, 50, 100}, changes);
  rasterkit::FollowPixels(placement, {{0.9, 0.1, -0.1, 0.9, 3, 4}, 50, 100, 60, 110}, changes);
  Require(placement.rationalModel.empty());
  return 0;
}
