#include <utility>

#include <rasterkit/codecs/tiff/tiff_strip_packer.h>
#include <rasterkit/codecs/tiff/tiff_strip_writer.h>

namespace rasterkit::detail {

TiffStripPacker::TiffStripPacker(const TiffPlan& plan) : output_(bytes_, plan.isBig) {
  SetStripTags(output_, plan);
}

std::vector<uint8_t> TiffStripPacker::Pack(uint32_t strip, std::span<const uint8_t> rows) {
  bytes_.bytes.clear();
  output_.WriteStrip(strip, rows);
  return std::exchange(bytes_.bytes, {});
}

}  // namespace rasterkit::detail
