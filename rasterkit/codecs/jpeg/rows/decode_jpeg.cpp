#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_row_reader.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

/// Decodes all rows. `asStored` gives inks as samples and reports missing scans.
Pixels Decode(std::span<const uint8_t> bytes, bool asStored, CodecReport* report) {
  const LimitsScope limits;
  detail::JpegReading reading;
  reading.asStored = asStored;
  reading.isWhole = true;
  detail::JpegRowReader reader(bytes, reading);
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
  return std::get<Raster>(Decode(bytes, false, report));
}

Pixels DecodeJpegPixels(std::span<const uint8_t> bytes, CodecReport* report) {
  return Decode(bytes, true, report);
}

}  // namespace rasterkit
