#include <utility>

#include <rasterkit/codecs/g4/g4_strip.h>
#include <rasterkit/codecs/tiff/tiff_strip_packer.h>
#include <rasterkit/codecs/tiff/tiff_strip_writer.h>

namespace rasterkit::detail {

TiffStripPacker::TiffStripPacker(const TiffPlan& plan) : plan_(plan), output_(bytes_, plan.isBig) {
  SetStripTags(output_, plan);
}

std::vector<uint8_t> TiffStripPacker::Pack(uint32_t strip, std::span<const uint8_t> rows) {
  if (IsG4(plan_)) return PackG4(plan_, rows);
  bytes_.bytes.clear();
  output_.WriteStrip(strip, rows);
  return std::exchange(bytes_.bytes, {});
}

bool IsG4(const TiffPlan& plan) {
  return plan.compression == COMPRESSION_CCITTFAX4 && plan.bits == 1 && plan.samples == 1 &&
         G4Strip{plan.width, 1, false}.IsUsual();
}

std::vector<uint8_t> PackG4(const TiffPlan& plan, std::span<const uint8_t> rows) {
  G4Strip strip{plan.width, 0, false};
  strip.rows = static_cast<uint32_t>(rows.size() / strip.RowBytes());
  return EncodeG4Strip(rows, strip);
}

}  // namespace rasterkit::detail
