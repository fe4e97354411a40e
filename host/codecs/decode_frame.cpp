#include <array>
#include <utility>

#include <rasterkit/host/codecs/decode_frame.h>
#include <rasterkit/host/codecs/decode_picture.h>
#include <rasterkit/host/codecs/picture_type.h>
#include <rasterkit/host/codecs/tiff_decoder.h>
#include <rasterkit/host/runtime/errors.h>

namespace rasterkit {
namespace {

/// Enough for every kind's mark, also for that of a PDF behind foreign bytes.
constexpr size_t kSniffedBytes = 1024;

/// The bytes that were looked at are given back to the stream.
PictureType SniffStream(TStream& stream) {
  std::array<uint8_t, kSniffedBytes> first;
  const uint64_t start = stream.Position();
  const size_t count = stream.Read(first);
  stream.SetPosition(start);
  return SniffPictureType(std::span(first).first(count));
}

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

}  // namespace

ImagingFrame DecodeFrame(TStream& stream, const FrameOptions& options, CodecReport* report) {
  switch (SniffStream(stream)) {
    case PictureType::unknown:
      throw FormatError("Invalid image");
    case PictureType::tiff:
      return DecodeTiff(stream, options, report);
    default:
      break;
  }
  ImagingFrame frame;
  frame.rows = DecodePicture(stream, report);
  frame.format = FrameFormat(frame.rows);
  return frame;
}

}  // namespace rasterkit
