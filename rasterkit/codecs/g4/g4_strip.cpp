#include <rasterkit/codecs/g4/g4_decoder.h>
#include <rasterkit/codecs/g4/g4_encoder.h>
#include <rasterkit/codecs/g4/g4_strip.h>

namespace rasterkit::detail {

bool G4Strip::IsUsual() const {
  return width > 0 && width <= G4Decoder::kMostWidth && rows > 0;
}

bool DecodeG4Strip(std::span<const uint8_t> bytes, const G4Strip& strip, uint8_t edge,
                   uint8_t* target) {
  if (!strip.IsUsual()) return false;
  G4Decoder decoder(bytes, static_cast<int>(strip.width), {strip.isLowBitFirst, false});
  const auto behind = static_cast<uint8_t>(strip.width % 8 != 0 ? 0xFF >> strip.width % 8 : 0);
  const auto bits = static_cast<uint8_t>(edge & behind);
  for (uint32_t y = 0; y < strip.rows; y++, target += strip.RowBytes()) {
    if (!decoder.Decode(target)) return false;
    target[strip.RowBytes() - 1] |= bits;
  }
  return true;
}

std::vector<uint8_t> EncodeG4Strip(std::span<const uint8_t> rows, const G4Strip& strip) {
  G4Encoder encoder(static_cast<int>(strip.width), {strip.isLowBitFirst, false});
  encoder.Encode(rows.data(), strip.RowBytes(), strip.rows);
  return encoder.EndStrip();
}

}  // namespace rasterkit::detail
