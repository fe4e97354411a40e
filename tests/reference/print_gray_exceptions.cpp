// Prints the list in rasterkit/kernels/gray/gray_exceptions.cpp: the pairs red * 256 + green for
// which a blue exists that makes the gray value's exact sum whole while the extended sum lies just
// below it.
#include <cstdio>

#include "tests/reference/gray.h"

int main() {
  int printed = 0;
  for (int r = 0; r < 256; ++r) {
    for (int g = 0; g < 256; ++g) {
      for (int b = 0; b < 256; ++b) {
        const int thousandths = 297 * r + 589 * g + 114 * b;
        const int gray = rasterkit::reference::GrayInWholeNumbers(
            static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b));
        if (thousandths % 1000 != 0 || gray == thousandths / 1000) continue;
        std::printf("0x%02X%02X,%c", r, g, ++printed % 12 == 0 ? '\n' : ' ');
      }
    }
  }
  std::printf("\n");
}
