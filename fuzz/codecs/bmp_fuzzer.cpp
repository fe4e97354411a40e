// Any bytes as a bitmap file give a picture or an Error. A decoded picture is the same after it was
// written and read again.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <span>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

using namespace rasterkit;

namespace {

/// A few bytes can claim any size, and filling the default limit of 4 GiB for each input would take
/// too long. Every path is taken at this size too.
constexpr uint64_t kPictureLimit = 256 * 1024;

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken property: %s\n", what);
  std::abort();
}

std::optional<Raster> Decode(std::span<const uint8_t> bytes) {
  TSpanStream stream(bytes);
  try {
    return DecodeBmp(stream);
  } catch (const Error&) {
    return std::nullopt;
  }
}

Raster WriteAndRead(const Raster& raster) {
  TMemoryStream stream;
  EncodeBmp(raster, stream, BmpProfile::embed);
  stream.SetPosition(0);
  return DecodeBmp(stream);
}

void RequireSamePicture(const Raster& a, const Raster& b) {
  Require(a.Format() == b.Format(), "same format");
  Require(a.Width() == b.Width() && a.Height() == b.Height(), "same size");
  for (int y = 0; y < a.Height(); ++y) {
    Require(std::memcmp(a.Row(y), b.Row(y), a.Stride()) == 0, "same rows, padding included");
  }
  for (int i = 0; i < 256; ++i) {
    Require(a.palette.Entry(i) == b.palette.Entry(i), "same colors");
  }
  Require(a.alphaFormat == b.alphaFormat, "same alpha mark");
  Require(a.resolution == b.resolution, "same resolution");
  Require((a.profile == nullptr) == (b.profile == nullptr), "same profile");
  Require(a.profile == nullptr || *a.profile == *b.profile, "same profile");
}

/// Embedded JPEG and PNG pictures can hold what bitmap files cannot: fractional resolutions, alpha
/// that is 0 everywhere.
bool IsEmbedded(std::span<const uint8_t> bytes) {
  const size_t field = detail::kBmpFileHeaderBytes + detail::bmp_field::kCompression;
  if (bytes.size() < field + 4) return false;
  const uint32_t code = detail::BmpLong(bytes, field);
  return code == 4 || code == 5;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  const std::span<const uint8_t> bytes(data, size);
  std::optional<Raster> raster = Decode(bytes);
  if (!raster) return 0;
  Require(SniffPictureType(bytes) == PictureType::bmp, "what is read is recognized");
  Raster again = WriteAndRead(*raster);
  if (IsEmbedded(bytes)) {
    raster = std::move(again);
    again = WriteAndRead(*raster);
  }
  RequireSamePicture(*raster, again);
  return 0;
}
