#include <algorithm>
#include <cstring>

#include <rasterkit/host/codecs/tiff_strips.h>
#include <rasterkit/host/kernels/convert_rows.h>
#include <rasterkit/host/kernels/exchange_red_blue.h>

namespace rasterkit::detail {

std::span<const uint8_t> TiffStripRows::Strip(uint32_t strip) {
  const uint32_t first = strip * plan_.rowsPerStrip;
  const uint32_t count = std::min(plan_.rowsPerStrip, plan_.height - first);
  const size_t bytes = plan_.rowBytes * count;
  const auto y = static_cast<int>(first);
  const bool isContiguous = raster_.Stride() == plan_.rowBytes || count == 1;
  if (plan_.order == TiffRowOrder::same && isContiguous) return {raster_.Row(y), bytes};
  if (rows_.Size() < bytes) rows_ = PixelMemory(bytes);
  uint8_t* target = rows_.Data();
  for (int i = 0; i < static_cast<int>(count); i++, target += plan_.rowBytes)
    WriteRow(raster_.Row(y + i), target);
  return {rows_.Data(), bytes};
}

void TiffStripRows::WriteRow(const uint8_t* row, uint8_t* target) const {
  switch (plan_.order) {
    case TiffRowOrder::same:
      std::memcpy(target, row, plan_.rowBytes);
      break;
    case TiffRowOrder::rgb:
      kernels::ExchangeRedBlue24(row, plan_.width, target);
      break;
    case TiffRowOrder::rgbOf32:
      kernels::Row32To24(row, plan_.width, target);
      kernels::ExchangeRedBlue24(target, plan_.width, target);
      break;
    case TiffRowOrder::rgba:
      kernels::ExchangeRedBlue32(row, plan_.width, target);
      break;
  }
}

void SetStripTags(TiffOutput& output, const TiffPlan& plan) {
  output.Set(TIFFTAG_IMAGEWIDTH, plan.width);
  output.Set(TIFFTAG_IMAGELENGTH, plan.height);
  output.Set(TIFFTAG_BITSPERSAMPLE, plan.bits);
  output.Set(TIFFTAG_SAMPLESPERPIXEL, plan.samples);
  output.Set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  output.Set(TIFFTAG_PHOTOMETRIC, plan.photometric);
  output.Set(TIFFTAG_COMPRESSION, plan.compression);
  output.Set(TIFFTAG_ROWSPERSTRIP, plan.rowsPerStrip);
  if (plan.predictor != PREDICTOR_NONE) output.Set(TIFFTAG_PREDICTOR, plan.predictor);
}

void WriteStrips(TiffOutput& output, const Raster& raster, const TiffPlan& plan, int) {
  TiffStripRows rows(raster, plan);
  const bool isPacked = plan.compression != COMPRESSION_NONE;
  for (uint32_t strip = 0; strip < plan.Strips(); strip++) {
    if (isPacked) {
      output.WriteStrip(strip, rows.Strip(strip));
    } else {
      output.WritePacked(strip, rows.Strip(strip));
    }
  }
}

}  // namespace rasterkit::detail
