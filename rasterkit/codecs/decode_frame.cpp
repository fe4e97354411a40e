#include <utility>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

WICPixelFormat FrameFormat(const Raster& raster) {
  switch (raster.Format()) {
    case pf1bit:
      return GUID_WICPixelFormat1bppIndexed;
    case pf4bit:
      return GUID_WICPixelFormat4bppIndexed;
    case pf8bit:
      return GUID_WICPixelFormat8bppIndexed;
    case pf15bit:
      return GUID_WICPixelFormat16bppBGR555;
    case pf16bit:
      return GUID_WICPixelFormat16bppBGR565;
    case pf24bit:
      return GUID_WICPixelFormat24bppBGR;
    default:
      return raster.alphaFormat == afDefined ? GUID_WICPixelFormat32bppBGRA
                                             : GUID_WICPixelFormat32bppBGR;
  }
}

ImagingFrame DecodeSized(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const Codec* codec = FindCodec(SniffPictureType(stream));
  if (codec == nullptr) throw FormatError("Invalid image");
  if (codec->decodeFrame != nullptr) return codec->decodeFrame(stream, options, report);
  ImagingFrame frame;
  frame.rows = DecodePicture(stream, report);
  frame.format = FrameFormat(frame.rows);
  return frame;
}

}  // namespace

ImagingFrame DecodeFrame(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  if (stream.Size() > stream.Position()) return DecodeSized(stream, options, report);
  // Pipes have no size and give their bytes only once.
  TMemoryStream memory(ReadUnsizedPicture(stream));
  return DecodeSized(memory, options, report);
}

}  // namespace rasterkit
