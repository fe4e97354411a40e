#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/dialogs/bitmapframe/memory_size.h>
#include <rasterkit/dialogs/editpdfbitmap/page_size_text.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

constexpr int kBits = 24;

/// A file may contain a page size of any value.
int Whole(double value) {
  constexpr double kGreatest = std::numeric_limits<int>::max();
  return value > 0 ? static_cast<int>(std::min(std::round(value), kGreatest)) : 0;
}

std::string Millimeters(double points) {
  return std::to_string(Whole(points * 25.4 / 72));
}

}  // namespace

std::string PageSizeText(const PdfPageSize& page, int resolution) {
  const PdfPixels pixels = PdfPagePixels(page, resolution / 100.0);
  const int width = Whole(pixels.width), height = Whole(pixels.height);
  const MemorySize memory = MemorySizeOf(kBits, width, height);
  const std::string values[] = {std::to_string(width),   std::to_string(height),
                                Millimeters(page.width), Millimeters(page.height),
                                memory.number,           memory.unit};
  return FormatText(ResourceString(rsEditPageSize), values);
}

}  // namespace rasterkit
