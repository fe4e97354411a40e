// Any bytes as a JPEG 2000 file give a header and pixels or an Error, pixels of the kind that the
// header says, and the same result a second time.

#include <rasterkit/codecs/jp2/jp2_picture.h>
#include <rasterkit/codecs/messages/header_fields.h>
#include <rasterkit/pictures/sources/decoded_kind.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

struct Decoded {
  std::string error;
  Pixels pixels;
  CodecReport report;
};

Decoded Decode(std::span<const uint8_t> file) {
  Decoded decoded;
  try {
    TSpanStream stream(file);
    decoded.pixels = DecodeJp2Pixels(stream, {}, &decoded.report);
  } catch (const Error& error) {
    decoded.error = error.Reason();
  }
  return decoded;
}

/// What the header says of the pixels comes.
void RequireKind(std::span<const uint8_t> file, const Pixels& pixels) {
  TSpanStream stream(file);
  const PictureHeader header = ReadJp2Header(stream);
  Require(header.width == WidthOf(pixels) && header.height == HeightOf(pixels));
  const auto kind = detail::DecodedKindOf(PictureType::jp2, header.layout);
  const PixelLayout layout = LayoutOf(pixels);
  Require(kind.isRaster == std::holds_alternative<Raster>(pixels));
  Require(kind.layout.type == layout.type && kind.layout.bits == layout.bits);
  Require(kind.layout.bands == layout.bands && kind.layout.alpha == layout.alpha);
}

void CheckHeader(std::span<const uint8_t> file) {
  try {
    TSpanStream stream(file);
    const PictureHeader header = ReadJp2Header(stream);
    Require(header.width > 0 && header.height > 0 && header.frames >= 1);
    Require(header.metadata.exif.size() <= file.size());
    Require(header.metadata.xmp.size() <= file.size());
  } catch (const Error&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(8 << 20);
  const std::span<const uint8_t> file(data, size);
  CheckHeader(file);
  const Decoded first = Decode(file), second = Decode(file);
  Require(first.error == second.error && first.report.damage == second.report.damage);
  if (!first.error.empty()) return 0;
  RequireKind(file, first.pixels);
  const auto a = detail::BytesOf(first.pixels), b = detail::BytesOf(second.pixels);
  Require(std::equal(a.begin(), a.end(), b.begin(), b.end()));
  return 0;
}
