#include "tool/pictures/exif/jpeg_input.h"

#include <algorithm>
#include <new>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"
#include "tool/command/standard_input.h"

namespace rasterkit::tool {
namespace {

/// Reads the whole file. Of an endless device it reads only the first bytes.
std::vector<uint8_t> ReadAll(TFileStream& stream) {
  if (stream.Size() > 0) return stream.ReadToEnd();
  std::vector<uint8_t> bytes = ReadUnsizedPicture(stream);
  if (SniffPictureType(bytes) == PictureType::unknown) throw FormatError("this is not a JPEG file");
  return bytes;
}

void RequireJpeg(std::span<const uint8_t> bytes) {
  if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xD8) return;
  const PictureType type = SniffPictureType(bytes);
  if (type == PictureType::unknown) throw FormatError("this is not a JPEG file");
  throw FormatError(std::string("this is not a JPEG file but ") + PictureTypeName(type));
}

std::vector<uint8_t> ReadInput(const std::string& file) {
  if (IsStandardStream(file)) return TakeStandardInput();
  TFileStream stream(file);
  return ReadAll(stream);
}

}  // namespace

std::vector<uint8_t> ReadJpegInput(const std::string& file) {
  try {
    const InterruptibleInput waiting(file);
    std::vector<uint8_t> bytes = ReadInput(file);
    RequireJpeg(bytes);
    return bytes;
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": out of memory");
  }
}

}  // namespace rasterkit::tool
