#include <utility>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/rows/frame_format.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

ImagingFrame DecodeSized(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const Codec* codec = FindCodec(SniffPictureType(stream));
  if (codec == nullptr) throw FormatError("Invalid image");
  if (codec->decodeFrame != nullptr) return codec->decodeFrame(stream, options, report);
  ImagingFrame frame;
  frame.rows = DecodePicture(stream, report);
  frame.format = detail::FrameFormatOf(frame.rows);
  return frame;
}

}  // namespace

ImagingFrame DecodeFrame(TStream& stream, const FrameOptions& options, CodecReport* report) {
  if (stream.Size() > stream.Position()) return DecodeSized(stream, options, report);
  // Pipes have no size and give their bytes only once.
  TMemoryStream memory(ReadUnsizedPicture(stream));
  return DecodeSized(memory, options, report);
}

}  // namespace rasterkit
