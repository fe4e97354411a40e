// The bytes of one EXIF section, from behind its length on, through the directory reader.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/errors.h>

namespace {

constexpr size_t kLargestContent = 65535 - 2;
/// What one section may make the reader keep, whatever it claims.
constexpr size_t kMostKeptBytes = 32u << 20;

void Require(bool condition) {
  if (!condition) std::abort();
}

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
    // A GPS position that is none.
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
