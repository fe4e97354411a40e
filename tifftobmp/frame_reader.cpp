#include <rasterkit/host/codecs/decode_frame.h>
#include <rasterkit/host/codecs/unsized_picture.h>
#include <rasterkit/host/graphics/name_errors.h>
#include <rasterkit/host/runtime/stream.h>
#include <rasterkit/tifftobmp/frame_reader.h>

namespace rasterkit::detail {
namespace {

/// Codecs go back and forth in their file, which a pipe or a device does not allow; those state no
/// size.
ImagingFrame DecodeFile(const std::string& fileName) {
  TFileStream file(fileName);
  if (file.Size() > 0) return DecodeFrame(file);
  TMemoryStream memory(ReadUnsizedPicture(file));
  return DecodeFrame(memory);
}

}  // namespace

FrameBitmap ReadFrame(const std::string& fileName, ReadMode mode) {
  FrameBitmap read;
  NameErrors(fileName, [&] { read = BitmapOfFrame(DecodeFile(fileName), mode); });
  return read;
}

}  // namespace rasterkit::detail
