#include <algorithm>

#include <rasterkit/dialogs/editor/mebibyte_text.h>
#include <rasterkit/strings/format_text.h>

namespace rasterkit {

std::string MebibyteText(uint64_t bytes) {
  constexpr uint64_t kTenth = (uint64_t{1} << 20) / 10;
  const uint64_t tenths = std::max<uint64_t>(bytes == 0 ? 0 : 1, (bytes + kTenth / 2) / kTenth);
  return std::to_string(tenths / 10) + DecimalMark() + std::to_string(tenths % 10);
}

}  // namespace rasterkit
