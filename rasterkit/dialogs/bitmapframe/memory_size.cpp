#include <rasterkit/dialogs/bitmapframe/memory_size.h>
#include <rasterkit/runtime/rounding.h>
#include <rasterkit/strings/format_text.h>

namespace rasterkit {
namespace {

/// With the decimal mark of the texts, independent of the locale of the process.
std::string Fixed(double value, int decimals) {
  const int64_t scale = decimals == 2 ? 100 : 1;
  const int64_t scaled = Round(value * static_cast<double>(scale));
  std::string text = std::to_string(scaled / scale);
  if (decimals == 0) return text;
  const std::string rest = std::to_string(scaled % scale);
  return text + DecimalMark() + (rest.size() < 2 ? "0" : "") + rest;
}

}  // namespace

MemorySize MemorySizeOf(int bits, int width, int height) {
  const float bytes =
      static_cast<float>(bits) * static_cast<float>(width) * static_cast<float>(height) / 8;
  if (bytes <= 10000) return {Fixed(bytes, 0), "byte"};
  if (bytes <= 1e6F) return {Fixed(bytes / 1000.0, 0), "kB"};
  return {Fixed(bytes / 1e6, 2), "MB"};
}

}  // namespace rasterkit
