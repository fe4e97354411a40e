#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/png/rows/png_rows.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

Pixels DecodeWhole(TStream& stream, detail::PngOpening opening, CodecReport* report) {
  const LimitsScope limits;
  opening.isWhole = true;
  detail::PngRows rows(stream, opening);
  Pixels pixels = rows.ReadWhole();
  CodecReport noticed;
  rows.Finish(noticed);
  if (report != nullptr) report->Append(noticed);
  return pixels;
}

}  // namespace

Raster DecodePng(std::span<const uint8_t> bytes, CodecReport* report) {
  TSpanStream stream(bytes);
  return std::get<Raster>(DecodeWhole(stream, {.kind = detail::PngRowKind::colors}, report));
}

Pixels DecodePngPixels(std::span<const uint8_t> file, CodecReport* report) {
  TSpanStream stream(file);
  return DecodeWhole(stream, {}, report);
}

Pixels DecodePngStream(TStream& stream, const FrameOptions&, CodecReport* report) {
  return DecodeWhole(stream, {}, report);
}

std::unique_ptr<RowReader> OpenPngRows(TStream& stream, const FrameOptions&) {
  auto rows = std::make_unique<detail::PngRows>(stream, detail::PngOpening());
  if (rows->IsInterlaced()) return nullptr;
  return rows;
}

}  // namespace rasterkit
