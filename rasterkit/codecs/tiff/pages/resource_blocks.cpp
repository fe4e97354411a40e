#include <algorithm>
#include <string_view>

#include <rasterkit/codecs/tiff/pages/resource_blocks.h>

namespace rasterkit::detail {

namespace {

constexpr uint16_t kResolution = 1005, kIptc = 1028;

uint32_t Number(std::span<const uint8_t> bytes, size_t at, int count) {
  uint32_t value = 0;
  for (int i = 0; i < count; i++) value = value << 8 | bytes[at++];
  return value;
}

bool IsMarked(std::span<const uint8_t> bytes) {
  constexpr std::string_view kMark = "8BIM";
  return std::equal(kMark.begin(), kMark.end(), bytes.begin());
}

/// Dots per inch as whole parts and 65536ths, then units; the vertical one follows 8 bytes later.
Resolution ResolutionOf(std::span<const uint8_t> data) {
  if (data.size() < 12) return {};
  constexpr double kUnit = 65536;
  return {Number(data, 0, 4) / kUnit, Number(data, 8, 4) / kUnit};
}

size_t Even(size_t size) {
  return size + size % 2;
}

}  // namespace

ResourceBlocks TakeApart(std::span<const uint8_t> resources) {
  ResourceBlocks found;
  size_t at = 0;
  // Mark, number, at least two bytes of name, size.
  while (resources.size() - at >= 12 && IsMarked(resources.subspan(at))) {
    const uint32_t id = Number(resources, at + 4, 2);
    const size_t sizeAt = at + 6 + Even(size_t{1} + resources[at + 6]);
    if (sizeAt + 4 > resources.size()) break;
    const size_t size = Number(resources, sizeAt, 4);
    if (size > resources.size() - sizeAt - 4) break;
    const size_t end = std::min(resources.size(), sizeAt + 4 + Even(size));
    const std::span<const uint8_t> data = resources.subspan(sizeAt + 4, size);
    if (id == kResolution) found.resolution = ResolutionOf(data);
    if (id == kIptc && found.iptc.empty()) {
      found.iptc.assign(data.begin(), data.end());
    } else {
      found.others.insert(found.others.end(), resources.begin() + static_cast<ptrdiff_t>(at),
                          resources.begin() + static_cast<ptrdiff_t>(end));
    }
    at = end;
  }
  found.others.insert(found.others.end(), resources.begin() + static_cast<ptrdiff_t>(at),
                      resources.end());
  return found;
}

}  // namespace rasterkit::detail
