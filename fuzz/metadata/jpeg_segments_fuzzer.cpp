// Walks through any bytes as the segments of a JPEG file, to the end of the image.

#include <cstdint>
#include <span>

#include <rasterkit/metadata/jpeg_segments.h>

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace rasterkit;
  const std::span<const uint8_t> file(data, size);
  JpegSegmentWalker walker(file);
  size_t position = 0;
  while (const auto segment = walker.Next()) {
    Require(segment->at >= position && segment->at < walker.Position());
    position = walker.Position();
    Require(position <= size);
    const auto block = BlockBytes(*segment);
    if (!block.empty()) Require(block.data() >= data && block.data() + block.size() <= data + size);
    ReadJfif(*segment);
    ReadProfilePart(*segment);
    ReadExtendedXmpPart(*segment);
  }
  Require(!(walker.IsCut() && walker.IsAtEnd()));
  const auto exif = FindExif(file);
  if (!exif.empty()) Require(exif.data() > data && exif.data() + exif.size() <= data + size);
  return 0;
}
