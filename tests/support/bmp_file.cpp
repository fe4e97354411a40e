#include "tests/support/bmp_file.h"

#include <algorithm>

namespace rasterkit::test {
namespace {

constexpr size_t kInfo = 14;  // where the info header starts

/// Writes as much of a little-endian field as there is room for.
void Put(std::vector<uint8_t>& bytes, size_t offset, size_t count, uint32_t value) {
  for (size_t i = 0; i < count && offset + i < bytes.size(); ++i) {
    bytes[offset + i] = static_cast<uint8_t>(value >> (8 * i));
  }
}

}  // namespace

std::vector<uint8_t> BmpFile::Head() const {
  const size_t maskBytes = masks.empty() ? 0 : 40 + 4 * masks.size();
  std::vector<uint8_t> bytes(kInfo + std::max<size_t>(headerBytes, maskBytes));
  bytes[0] = 'B';
  bytes[1] = 'M';
  Put(bytes, kInfo, 4, headerBytes);
  const bool isCore = headerBytes == 12;
  const size_t sizeBytes = isCore ? 2 : 4;
  Put(bytes, kInfo + 4, sizeBytes, static_cast<uint32_t>(width));
  Put(bytes, kInfo + 4 + sizeBytes, sizeBytes, static_cast<uint32_t>(height));
  Put(bytes, kInfo + 4 + 2 * sizeBytes, 2, 1);
  Put(bytes, kInfo + 6 + 2 * sizeBytes, 2, bits);
  if (isCore) return bytes;
  Put(bytes, kInfo + 16, 4, compression);
  Put(bytes, kInfo + 24, 4, static_cast<uint32_t>(pixelsPerMeterX));
  Put(bytes, kInfo + 28, 4, static_cast<uint32_t>(pixelsPerMeterY));
  Put(bytes, kInfo + 32, 4, colorsUsed);
  for (size_t i = 0; i < masks.size(); ++i) Put(bytes, kInfo + 40 + 4 * i, 4, masks[i]);
  return bytes;
}

std::vector<uint8_t> BmpFile::Bytes() const {
  std::vector<uint8_t> bytes = Head();
  for (const uint32_t color : palette) {
    for (int i = 0; i < 3; ++i) bytes.push_back(static_cast<uint8_t>(color >> (8 * i)));
    if (headerBytes != 12) bytes.push_back(0);
  }
  Put(bytes, 10, 4, pixelOffset.value_or(static_cast<uint32_t>(bytes.size())));
  bytes.insert(bytes.end(), pixels.begin(), pixels.end());
  if (headerBytes >= 124 && !profile.empty()) {
    Put(bytes, kInfo + 56, 4, colorSpace);
    Put(bytes, kInfo + 112, 4, profileOffset.value_or(static_cast<uint32_t>(bytes.size() - kInfo)));
    Put(bytes, kInfo + 116, 4, profileBytes.value_or(static_cast<uint32_t>(profile.size())));
    bytes.insert(bytes.end(), profile.begin(), profile.end());
  }
  Put(bytes, 2, 4, static_cast<uint32_t>(bytes.size()));
  return bytes;
}

}  // namespace rasterkit::test
