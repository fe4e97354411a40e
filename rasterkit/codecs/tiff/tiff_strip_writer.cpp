#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/rows/worker_threads.h>
#include <rasterkit/codecs/tiff/tiff_strip_packer.h>
#include <rasterkit/codecs/tiff/tiff_strip_write_queue.h>
#include <rasterkit/codecs/tiff/tiff_strip_writer.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/kernels/rows/exchange_red_blue.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

/// Strips in work or waiting for an earlier one, per thread.
constexpr uint32_t kStripsPerThread = 4;

/// At most one thread per strip, and as many as the memory limit allows. Uncompressed rows gain
/// nothing from a second thread.
int UsefulThreads(const TiffPlan& plan, int threads) {
  if (plan.compression == COMPRESSION_NONE) return 1;
  const uint64_t strip = uint64_t{plan.rowBytes} * plan.rowsPerStrip;
  const uint64_t affordable = PictureMemoryLimit() / (4 * kStripsPerThread) / strip;
  const uint64_t most = std::min<uint64_t>(plan.Strips(), std::max<uint64_t>(1, affordable));
  return static_cast<int>(std::min(most, static_cast<uint64_t>(threads)));
}

void PackOnThreads(TiffOutput& output, const Raster& raster, const TiffPlan& plan, int threads) {
  TiffStripQueue queue(output, plan.Strips(), kStripsPerThread * static_cast<uint32_t>(threads));
  const auto work = [&] {
    try {
      TiffStripRows rows(raster, plan);
      TiffStripPacker packer(plan);
      while (const auto strip = queue.Next()) {
        RequireTime();
        queue.Put(*strip, packer.Pack(*strip, rows.Strip(*strip)));
      }
    } catch (...) {
      queue.Stop();
      throw;
    }
  };
  RunOnThreads(threads, work, work);
}

}  // namespace

std::span<const uint8_t> TiffStripRows::Strip(uint32_t strip) {
  const uint32_t first = strip * plan_.rowsPerStrip;
  const uint32_t count = std::min(plan_.rowsPerStrip, plan_.height - first);
  const size_t bytes = plan_.rowBytes * count;
  const auto y = static_cast<int>(first);
  const bool isContiguous = raster_.Stride() == plan_.rowBytes || count == 1;
  if (plan_.order == TiffRowOrder::same && isContiguous) return {raster_.Row(y), bytes};
  if (rows_.Size() < bytes) rows_ = PixelMemory(bytes);
  uint8_t* target = rows_.Data();
  for (int i = 0; i < static_cast<int>(count); i++, target += plan_.rowBytes) {
    WriteRow(raster_.Row(y + i), target);
  }
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
  if (plan.level) output.Set(TIFFTAG_ZIPQUALITY, *plan.level);
}

void SetColorTags(TiffOutput& output, const TiffPlan& plan) {
  if (plan.hasAlpha) {
    const uint16_t kind = EXTRASAMPLE_UNASSALPHA;
    output.Set(TIFFTAG_EXTRASAMPLES, 1, &kind);
  }
  if (plan.colorMap.empty()) return;
  const size_t count = plan.colorMap.size() / 3;
  const uint16_t* reds = plan.colorMap.data();
  output.Set(TIFFTAG_COLORMAP, reds, reds + count, reds + 2 * count);
}

void WriteStrips(TiffOutput& output, const Raster& raster, const TiffPlan& plan, int threads) {
  const int useful = UsefulThreads(plan, threads);
  if (useful > 1) return PackOnThreads(output, raster, plan, useful);
  const bool isPacked = plan.compression != COMPRESSION_NONE;
  TiffStripRows rows(raster, plan);
  for (uint32_t strip = 0; strip < plan.Strips(); strip++) {
    RequireTime();
    if (IsG4(plan)) {
      output.WritePacked(strip, PackG4(plan, rows.Strip(strip)));
    } else if (isPacked) {
      output.WriteStrip(strip, rows.Strip(strip));
    } else {
      output.WritePacked(strip, rows.Strip(strip));
    }
  }
}

}  // namespace rasterkit::detail
