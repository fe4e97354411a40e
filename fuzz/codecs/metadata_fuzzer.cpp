#include <cstdint>
#include <cstdlib>
#include <span>

#include <rasterkit/codecs/list_metadata.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const rasterkit::PictureMetadata metadata = rasterkit::ReadMetadata({data, size});
  // Every byte of the block must lie within the bytes given.
  for (const uint8_t& byte : metadata.exif)
    if (&byte < data || &byte >= data + size) std::abort();
  return 0;
}
