#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/graphics/name_errors.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/tifftobmp/frame_reader.h>

namespace rasterkit::detail {

FrameBitmap ReadFrame(const std::string& fileName, ReadMode mode) {
  FrameBitmap read;
  NameErrors(fileName, [&] {
    TFileStream file(fileName);
    read = BitmapOfFrame(DecodeFrame(file), mode);
  });
  return read;
}

}  // namespace rasterkit::detail
