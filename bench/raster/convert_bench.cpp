// Conversions between pixel formats of a 12-megapixel picture, whole rasters with their allocation,
// beside a memcpy of the 24-bit bytes, OpenCV (cvtColor between 24 and 32 bits) and Qt
// (convertToFormat without dithering; beyond 256 colors its palette is a fixed cube, not one
// chosen for the picture).
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <rasterkit/raster/convert.h>

#if __has_include(<opencv2/imgproc.hpp>)
#include <opencv2/imgproc.hpp>
#define RASTERKIT_BESIDE_OPENCV
#endif

#ifdef RASTERKIT_BENCH_QT
#include <QImage>
#endif

#include "bench/support/bench_pictures.h"

namespace {

using namespace rasterkit;

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;

enum class Content { photo, fewColors };

// Few colors are the photograph's own, cut to two bits per channel: 64 at most.
Raster MakePicture(Content content, TPixelFormat format) {
  Raster picture = bench::PhotoLike(kWidth, kHeight);
  if (content == Content::fewColors) {
    for (int y = 0; y < kHeight; ++y) {
      uint8_t* row = picture.Row(y);
      for (size_t i = 0; i < picture.RowBytes(); ++i) row[i] &= 0xC0;
    }
  }
  return ConvertRaster(picture, format);
}

void CountPicture(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * int64_t{kWidth} * kHeight);
}

void BM_Memcpy(benchmark::State& state) {
  const Raster source = MakePicture(Content::photo, pf24bit);
  Raster target(pf24bit, kWidth, kHeight);
  for (auto _ : state) {
    std::memcpy(target.Row(0), source.Row(0), source.Stride() * kHeight);
    benchmark::ClobberMemory();
  }
  CountPicture(state);
}

void BM_Convert(benchmark::State& state, TPixelFormat from, TPixelFormat to, Content content) {
  const Raster source = MakePicture(content, from);
  for (auto _ : state) {
    const Raster target = ConvertRaster(source, to);
    benchmark::DoNotOptimize(target.Row(0));
  }
  CountPicture(state);
}

BENCHMARK(BM_Memcpy)->Unit(benchmark::kMillisecond);

#define RASTERKIT_BENCH_CONVERT(name, from, to, content) \
  BENCHMARK_CAPTURE(BM_Convert, name, from, to, Content::content)->Unit(benchmark::kMillisecond)
RASTERKIT_BENCH_CONVERT(24_to_32, pf24bit, pf32bit, photo);
RASTERKIT_BENCH_CONVERT(32_to_24, pf32bit, pf24bit, photo);
RASTERKIT_BENCH_CONVERT(8_to_24, pf8bit, pf24bit, photo);
RASTERKIT_BENCH_CONVERT(16_to_24, pf16bit, pf24bit, photo);
RASTERKIT_BENCH_CONVERT(16_to_32, pf16bit, pf32bit, photo);
RASTERKIT_BENCH_CONVERT(24_to_8_exact, pf24bit, pf8bit, fewColors);
RASTERKIT_BENCH_CONVERT(24_to_8_adaptive, pf24bit, pf8bit, photo);
RASTERKIT_BENCH_CONVERT(24_to_1, pf24bit, pf1bit, photo);
#undef RASTERKIT_BENCH_CONVERT

#ifdef RASTERKIT_BESIDE_OPENCV
void BM_OpenCv(benchmark::State& state, TPixelFormat from, int code) {
  cv::setNumThreads(1);
  Raster source = MakePicture(Content::photo, from);
  const cv::Mat mat(kHeight, kWidth, from == pf24bit ? CV_8UC3 : CV_8UC4, source.Row(0),
                    source.Stride());
  for (auto _ : state) {
    cv::Mat target;
    cv::cvtColor(mat, target, code);
    benchmark::DoNotOptimize(target.data);
  }
  CountPicture(state);
}
BENCHMARK_CAPTURE(BM_OpenCv, 24_to_32, pf24bit, cv::COLOR_BGR2BGRA)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenCv, 32_to_24, pf32bit, cv::COLOR_BGRA2BGR)->Unit(benchmark::kMillisecond);
#endif

#ifdef RASTERKIT_BENCH_QT
QImage::Format QtFormat(TPixelFormat format) {
  switch (format) {
    case pf8bit:
      return QImage::Format_Indexed8;
    case pf24bit:
      return QImage::Format_BGR888;
    default:
      return QImage::Format_RGB32;
  }
}

QImage QtPicture(const Raster& source) {
  QImage image(source.Row(0), source.Width(), source.Height(),
               static_cast<qsizetype>(source.Stride()), QtFormat(source.Format()));
  QList<QRgb> colors;
  for (const tagPALETTEENTRY& entry : source.palette.Entries())
    colors.push_back(qRgb(entry.peRed, entry.peGreen, entry.peBlue));
  if (!colors.empty()) image.setColorTable(colors);
  return image;
}

void BM_Qt(benchmark::State& state, TPixelFormat from, TPixelFormat to, Content content) {
  const Raster source = MakePicture(content, from);
  const QImage image = QtPicture(source);
  for (auto _ : state) {
    const QImage target =
        image.convertToFormat(QtFormat(to), Qt::ThresholdDither | Qt::AvoidDither);
    benchmark::DoNotOptimize(target.constBits());
  }
  CountPicture(state);
}

BENCHMARK_CAPTURE(BM_Qt, 24_to_32, pf24bit, pf32bit, Content::photo)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Qt, 32_to_24, pf32bit, pf24bit, Content::photo)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Qt, 8_to_24, pf8bit, pf24bit, Content::photo)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Qt, 24_to_8_exact, pf24bit, pf8bit, Content::fewColors)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Qt, 24_to_8_adaptive, pf24bit, pf8bit, Content::photo)
    ->Unit(benchmark::kMillisecond);
#endif

}  // namespace
