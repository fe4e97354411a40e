#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_row_reader.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

/// Decodes all rows.
template <class Source>
Pixels Decode(Source& source, detail::JpegReading reading, CodecReport* report) {
  const LimitsScope limits;
  reading.isWhole = true;
  detail::JpegRowReader reader(source, reading);
  reader.Start();
  Pixels pixels = NewPixels(reader.Like(), reader.Width(), reader.Height());
  reader.Read(0, 0, pixels);
  std::visit([&](auto& rows) { rows.resolution = reader.StatedResolution(); }, pixels);
  CodecReport noticed;
  reader.Finish(noticed);
  if (report != nullptr) report->Append(noticed);
  return pixels;
}

}  // namespace

Raster DecodeJpeg(std::span<const uint8_t> bytes, CodecReport* report) {
  return std::get<Raster>(Decode(bytes, {.asStored = false}, report));
}

Pixels DecodeJpegPixels(std::span<const uint8_t> bytes, CodecReport* report) {
  return Decode(bytes, {}, report);
}

Raster DecodeSmallerJpeg(TStream& stream, int denominator, CodecReport* report) {
  return std::get<Raster>(Decode(stream, {.asStored = false, .denominator = denominator}, report));
}

Pixels DecodeSmallerJpegPixels(TStream& stream, int denominator, CodecReport* report) {
  return Decode(stream, {.denominator = denominator}, report);
}

}  // namespace rasterkit
