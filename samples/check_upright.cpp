// check_upright ORIGINAL PICTURE...: compares each picture with the upright original.
// JPEG changes a picture a little, a turn that went wrong changes it entirely; the limit lies far
// from both.

#include <cmath>
#include <cstdlib>
#include <exception>
#include <memory>

#include <fmt/format.h>

#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/files/stream.h>

namespace {

using rasterkit::TBitmap;

constexpr double kLimit = 4;

TBitmap Load(const char* name) {
  rasterkit::TFileStream stream(name);
  TBitmap bitmap(rasterkit::DecodePicture(stream));
  bitmap.SetPixelFormat(rasterkit::pf24bit);
  return bitmap;
}

/// Mean of the differences of all channels, 0 to 255; infinite for another size.
double Difference(const TBitmap& a, const TBitmap& b) {
  if (a.Width() != b.Width() || a.Height() != b.Height()) return INFINITY;
  uint64_t sum = 0;
  const int count = a.Width() * 3;
  for (int y = 0; y < a.Height(); ++y)
    for (int x = 0; x < count; ++x)
      sum += static_cast<uint64_t>(std::abs(a.ScanLine(y)[x] - b.ScanLine(y)[x]));
  return static_cast<double>(sum) / count / a.Height();
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc < 3) {
    fmt::print(stderr, "usage: check_upright ORIGINAL PICTURE...\n");
    return 2;
  }
  const TBitmap original = Load(argv[1]);
  bool allUpright = true;
  for (int i = 2; i < argc; ++i) {
    const double difference = Difference(original, Load(argv[i]));
    const bool isUpright = difference < kLimit;
    fmt::print("{}: {} (mean difference {:.2f} of 255)\n", argv[i],
               isUpright ? "upright" : "NOT UPRIGHT", difference);
    allUpright = allUpright && isUpright;
  }
  return allUpright ? 0 : 1;
} catch (const std::exception& error) {
  fmt::print(stderr, "check_upright: {}\n", error.what());
  return 1;
}
