#include "tool/pictures/placement/position_tags.h"

#include <bit>
#include <concepts>
#include <span>

namespace rasterkit::tool {
namespace {

constexpr uint16_t kText = 2, kWord = 3, kDouble = 12;

template <std::unsigned_integral T>
void Append(std::vector<uint8_t>& bytes, T number) {
  for (size_t i = 0; i < sizeof number; ++i) bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
}

void AddDoubles(std::vector<TagValue>& tags, uint16_t tag, std::span<const double> values) {
  if (values.empty()) return;
  TagValue added{tag, kDouble, values.size(), {}};
  for (const double value : values) Append(added.bytes, std::bit_cast<uint64_t>(value));
  tags.push_back(std::move(added));
}

/// A key directory with the raster type alone.
TagValue RasterTypeKeys(int rasterType) {
  constexpr uint16_t kRasterTypeKey = 1025;
  const uint16_t words[] = {1, 1, 0, 1, kRasterTypeKey, 0, 1, static_cast<uint16_t>(rasterType)};
  TagValue keys{34735, kWord, std::size(words), {}};
  for (const uint16_t word : words) Append(keys.bytes, word);
  return keys;
}

}  // namespace

std::vector<TagValue> PositionTagsOf(const TiffFacts& facts) {
  std::vector<TagValue> tags;
  AddDoubles(tags, 33550, facts.pixelScale);
  AddDoubles(tags, 33922, facts.tiePoints);
  AddDoubles(tags, 34264, facts.transformation);
  if (facts.rasterType != 0) tags.push_back(RasterTypeKeys(facts.rasterType));
  if (!facts.noData.empty()) {
    TagValue noData{42113, kText, facts.noData.size() + 1, {}};
    noData.bytes.assign(facts.noData.begin(), facts.noData.end());
    noData.bytes.push_back(0);
    tags.push_back(std::move(noData));
  }
  return tags;
}

}  // namespace rasterkit::tool
