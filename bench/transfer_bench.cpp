// Contrast, brightness and pixel transfer over 12 megapixels of 24 bits, beside a memcpy of the
// bytes and OpenCV's nearest work: scale and offset of every channel (which needs no grey value),
// and a nearest resize followed by a multiplication. The second argument is the number of threads.
#include <array>
#include <cstdint>
#include <cstring>
#include <random>

#include <benchmark/benchmark.h>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/host/graphics/bitmap.h>

#if __has_include(<opencv2/imgproc.hpp>)
#include <opencv2/imgproc.hpp>
#define RASTERKIT_BESIDE_OPENCV
#endif

namespace {

using rasterkit::TBitmap;

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;

enum Content { noise, paper };

/// Random colours, or white with a tenth of them.
TBitmap MakePicture(rasterkit::TPixelFormat format, int width, int height, Content content) {
  TBitmap bitmap;
  bitmap.ResetPixels(format, width, height);
  std::mt19937 random(36);
  const auto bytes = static_cast<size_t>(bitmap.StoredBits() / 8);
  for (int y = 0; y < height; ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    std::memset(row, 255, bitmap.Stride());
    for (size_t x = 0; x < static_cast<size_t>(width); ++x) {
      const uint32_t bits = random();
      if (content == noise || bits >> 28 == 0) std::memcpy(row + bytes * x, &bits, bytes);
    }
  }
  return bitmap;
}

void SetNsPerPixel(benchmark::State& state) {
  state.counters["ns/px"] = benchmark::Counter(
      static_cast<double>(kWidth) * kHeight * static_cast<double>(state.iterations()) / 1e9,
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_Memcpy(benchmark::State& state) {
  const TBitmap picture = MakePicture(rasterkit::pf24bit, kWidth, kHeight, noise);
  TBitmap copy = MakePicture(rasterkit::pf24bit, kWidth, kHeight, paper);
  for (auto _ : state) {
    std::memcpy(copy.ScanLine(0), picture.ScanLine(0), picture.Stride() * kHeight);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

template <auto kRoutine>
void BM_Colors(benchmark::State& state) {
  TBitmap picture =
      MakePicture(rasterkit::pf24bit, kWidth, kHeight, static_cast<Content>(state.range(2)));
  const auto percent = static_cast<int32_t>(state.range(0));
  for (auto _ : state) {
    kRoutine(&picture, percent, static_cast<int32_t>(state.range(1)), nullptr);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

template <rasterkit::TPixelMode kMode>
void BM_Transfer(benchmark::State& state) {
  const auto sourceWidth = static_cast<int>(state.range(0));
  const int sourceHeight = sourceWidth * 3 / 4;
  TBitmap source = MakePicture(rasterkit::pf24bit, sourceWidth, sourceHeight, noise);
  TBitmap target = MakePicture(rasterkit::pf24bit, kWidth, kHeight, noise);
  const bool useGray = state.range(2) != 0;
  for (auto _ : state) {
    rasterkit::AssignPartBitmap(
        &target, &source, {0, 0, kWidth, kHeight}, {0, 0, sourceWidth, sourceHeight},
        static_cast<int32_t>(state.range(1)), nullptr, kMode, 30, useGray, false);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

void BM_InWhite(benchmark::State& state) {
  TBitmap source = MakePicture(rasterkit::pf24bit, 3000, 2250, paper);
  TBitmap target = MakePicture(rasterkit::pf24bit, kWidth, kHeight, paper);
  for (auto _ : state) {
    rasterkit::AssignInWhite(&target, &source, {0, 0, kWidth, kHeight}, {0, 0, 3000, 2250}, 0,
                             static_cast<int32_t>(state.range(0)), nullptr);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

BENCHMARK(BM_Memcpy)->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(BM_Colors<rasterkit::Kontrast>)
    ->ArgsProduct({{30, 50}, {1, 2}, {noise, paper}})
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_Colors<rasterkit::Helligkeit>)
    ->ArgsProduct({{20, 30, -30}, {1, 2}, {noise, paper}})
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_Transfer<rasterkit::pmShadow>)
    ->ArgsProduct({{3000, 4000, 6000}, {1, 2}, {0, 1}})
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_Transfer<rasterkit::pmTransparent>)
    ->ArgsProduct({{3000, 4000}, {1, 2}, {0}})
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_Transfer<rasterkit::pmOverwrite>)
    ->ArgsProduct({{3000, 4000}, {1, 2}, {0}})
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_InWhite)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

#ifdef RASTERKIT_BESIDE_OPENCV
cv::Mat MatOf(TBitmap& bitmap) {
  return {bitmap.Height(), bitmap.Width(), CV_8UC3, bitmap.ScanLine(0), bitmap.Stride()};
}

void BM_OpenCvScaleAndOffset(benchmark::State& state) {
  cv::setNumThreads(static_cast<int>(state.range(0)));
  TBitmap picture = MakePicture(rasterkit::pf24bit, kWidth, kHeight, noise);
  cv::Mat mat = MatOf(picture);
  for (auto _ : state) {
    mat.convertTo(mat, CV_8U, 1.3, -38.4);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

void BM_OpenCvNearestAndMultiply(benchmark::State& state) {
  cv::setNumThreads(static_cast<int>(state.range(1)));
  const auto sourceWidth = static_cast<int>(state.range(0));
  TBitmap source = MakePicture(rasterkit::pf24bit, sourceWidth, sourceWidth * 3 / 4, noise);
  TBitmap target = MakePicture(rasterkit::pf24bit, kWidth, kHeight, noise);
  cv::Mat from = MatOf(source), to = MatOf(target), scaled;
  for (auto _ : state) {
    cv::resize(from, scaled, to.size(), 0, 0, cv::INTER_NEAREST);
    cv::multiply(to, scaled, to, 1.0 / 255);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

BENCHMARK(BM_OpenCvScaleAndOffset)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_OpenCvNearestAndMultiply)
    ->ArgsProduct({{3000, 4000, 6000}, {1, 2}})
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
#endif

}  // namespace
