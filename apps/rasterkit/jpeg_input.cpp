#include "apps/rasterkit/jpeg_input.h"

#include <algorithm>
#include <new>

#include <rasterkit/host/codecs/picture_type.h>
#include <rasterkit/host/runtime/errors.h>
#include <rasterkit/host/runtime/stream.h>

#include "apps/rasterkit/exit_code.h"

namespace rasterkit::tool {
namespace {

void RequireJpeg(std::span<const uint8_t> bytes) {
  constexpr size_t sniffedBytes = 1024;
  if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xD8) return;
  const PictureType type = SniffPictureType(bytes.first(std::min(sniffedBytes, bytes.size())));
  if (type == PictureType::unknown) throw FormatError("this is no JPEG file");
  throw FormatError(std::string("this is no JPEG file but ") + PictureTypeName(type));
}

}  // namespace

std::vector<uint8_t> ReadJpegInput(const std::string& file) {
  try {
    std::vector<uint8_t> bytes = TFileStream(file).ReadToEnd();
    RequireJpeg(bytes);
    return bytes;
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + error.Reason());
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": not enough memory");
  }
}

}  // namespace rasterkit::tool
