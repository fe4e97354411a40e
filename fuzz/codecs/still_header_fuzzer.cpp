// Any bytes as a GIF, WebP or BMP file give a header or an Error, and what the header keeps is no
// larger than the file.

#include <rasterkit/codecs/bmp/bmp_picture.h>
#include <rasterkit/codecs/gif/gif_picture.h>
#include <rasterkit/codecs/webp/webp_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

template <class Read>
void Check(size_t size, const Read& read) {
  try {
    const PictureHeader header = read();
    Require(header.width > 0 && header.height > 0 && header.frames >= 1);
    Require(header.metadata.exif.size() <= size && header.metadata.xmp.size() <= size);
    for (const std::string& comment : header.metadata.comments) Require(comment.size() <= size);
  } catch (const Error&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(4 << 20);
  const std::span<const uint8_t> file(data, size);
  Check(size, [&] { return ReadGifHeader(file); });
  Check(size, [&] { return ReadWebpHeader(file); });
  Check(size, [&] {
    TSpanStream stream(file);
    return ReadBmpHeader(stream);
  });
  return 0;
}
