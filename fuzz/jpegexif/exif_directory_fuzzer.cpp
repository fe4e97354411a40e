// Reads any bytes as the content of an EXIF section, which follows its length.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"

namespace {

constexpr size_t kLargestContent = 65535 - 2;
/// Limit of what the reader keeps for one section, regardless of what the section claims.
constexpr size_t kMostKeptBytes = 32u << 20;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace rasterkit;
  const size_t content = std::min(size, kLargestContent);
  TImageData image;
  TSection& section = image.Sections[1];
  section.Size = static_cast<int32_t>(content + 2);
  section.Data = {static_cast<char>(section.Size >> 8), static_cast<char>(section.Size & 0xFF)};
  section.Data.append(reinterpret_cast<const char*>(data), content);
  image.ExifSegment = &section;
  image.ExifBuff = section.Data;
  image.ExifData = std::make_unique<TExifData>(kAllTagTypes);
  try {
    image.ProcessExif();
  } catch (const ConversionError&) {
    // An invalid GPS position.
  }
  size_t kept = image.DirStack.size();
  for (const TTagEntry& entry : image.ExifData->FTagArray) {
    kept += entry.RawBuff.size() + entry.Inhalt.size();
  }
  Require(kept <= kMostKeptBytes);
  const int rotation = image.ExifData->Rotation;
  Require(rotation == 0 || rotation == 90 || rotation == 180 || rotation == 270);
  return 0;
}
