// Contrast, brightness, sharpening, shift of colors and pixel transfer over 12 megapixels, beside
// a memcpy of the bytes and OpenCV's nearest work: scale and offset of every channel (which needs
// no gray value), a nearest resize followed by a multiplication, a weighted sum or a copy through a
// mask. Arguments are named.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>

#include <benchmark/benchmark.h>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/bitmaptools/engine/sharpen.h>
#include <rasterkit/bitmaptools/engine/shift_colors.h>
#include <rasterkit/graphics/bitmap.h>

#include "bench/support/bench_timing.h"

#if __has_include(<opencv2/imgproc.hpp>)
#include <opencv2/imgproc.hpp>
#define RASTERKIT_BESIDE_OPENCV
#endif

namespace {

using rasterkit::TBitmap;

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;

enum Content { noise, paper };

constexpr rasterkit::TPixelFormat FormatOf(int64_t bits) {
  return bits == 1    ? rasterkit::pf1bit
         : bits == 8  ? rasterkit::pf8bit
         : bits == 24 ? rasterkit::pf24bit
                      : rasterkit::pf32bit;
}

/// Random colors, or white with a tenth of them.
TBitmap MakePicture(rasterkit::TPixelFormat format, int width, int height, Content content) {
  TBitmap bitmap;
  bitmap.ResetPixels(format, width, height);
  std::mt19937 random(36);
  const auto bytes = static_cast<size_t>(bitmap.StoredBits() / 8);
  const size_t units = bytes != 0 ? static_cast<size_t>(width) : bitmap.Stride();
  for (int y = 0; y < height; ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    std::memset(row, 255, bitmap.Stride());
    for (size_t x = 0; x < units; ++x) {
      const uint32_t bits = random();
      const size_t unit = std::max(bytes, size_t{1});
      if (content == noise || bits >> 28 == 0) std::memcpy(row + unit * x, &bits, unit);
    }
  }
  return bitmap;
}

void SetNsPerPixel(benchmark::State& state) {
  state.counters["ns/px"] = benchmark::Counter(
      static_cast<double>(kWidth) * kHeight * static_cast<double>(state.iterations()) / 1e9,
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// Argument: bits of a pixel.
void BM_Memcpy(benchmark::State& state) {
  const auto format = FormatOf(state.range(0));
  const TBitmap picture = MakePicture(format, kWidth, kHeight, noise);
  TBitmap copy = MakePicture(format, kWidth, kHeight, paper);
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

void BM_Sharpen(benchmark::State& state) {
  TBitmap picture =
      MakePicture(rasterkit::pf24bit, kWidth, kHeight, static_cast<Content>(state.range(1)));
  for (auto _ : state) {
    rasterkit::Sharpen(&picture, static_cast<int32_t>(state.range(0)));
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

void BM_ShiftColors(benchmark::State& state) {
  TBitmap picture = MakePicture(rasterkit::pf24bit, kWidth, kHeight, noise);
  for (auto _ : state) {
    rasterkit::ShiftColors(&picture, 10, -10, 5);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

/// Arguments: width of the source, threads, gray, bits of the source and of the target.
template <rasterkit::TPixelMode kMode>
void BM_Transfer(benchmark::State& state) {
  const auto sourceWidth = static_cast<int>(state.range(0));
  const int sourceHeight = sourceWidth * 3 / 4;
  TBitmap source = MakePicture(FormatOf(state.range(3)), sourceWidth, sourceHeight, noise);
  TBitmap target = MakePicture(FormatOf(state.range(4)), kWidth, kHeight, noise);
  const bool useGray = state.range(2) != 0;
  for (auto _ : state) {
    rasterkit::AssignPartBitmap(
        &target, &source, {0, 0, kWidth, kHeight}, {0, 0, sourceWidth, sourceHeight},
        static_cast<int32_t>(state.range(1)), nullptr, kMode, 30, useGray, false);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

/// Into a target that is nine tenths white; every pass gets it fresh, outside the clock. Arguments:
/// width of the source, threads, bits of both. 24 into 32 bits is the one that writes the source.
void BM_InWhite(benchmark::State& state) {
  const auto width = static_cast<int>(state.range(0));
  const int height = width * 3 / 4;
  TBitmap source = MakePicture(FormatOf(state.range(2)), width, height, paper);
  const TBitmap fresh = MakePicture(FormatOf(state.range(3)), kWidth, kHeight, paper);
  std::unique_ptr<TBitmap> target;
  rasterkit::bench::MeasurePrepared(
      state, int64_t{kWidth} * kHeight, [&] { target = fresh.Clone(); },
      [&] {
        rasterkit::AssignInWhite(target.get(), &source, {0, 0, kWidth, kHeight},
                                 {0, 0, width, height}, 0, static_cast<int32_t>(state.range(1)),
                                 nullptr);
      });
}

BENCHMARK(BM_Memcpy)
    ->ArgName("bits")
    ->Arg(1)
    ->Arg(8)
    ->Arg(24)
    ->Arg(32)
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_Colors<rasterkit::Kontrast>)
    ->ArgNames({"percent", "threads", "paper"})
    ->ArgsProduct({{30, 50}, {1, 2}, {noise, paper}})
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_Colors<rasterkit::Helligkeit>)
    ->ArgNames({"percent", "threads", "paper"})
    ->ArgsProduct({{20, 30, -30}, {1, 2}, {noise, paper}})
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_Sharpen)
    ->ArgsProduct({{40, -40}, {noise, paper}})
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_ShiftColors)->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime()->UseRealTime();
void TransferCases(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"source", "threads", "gray", "from", "to"})
      ->ArgsProduct({{3000, 4000, 6000}, {1, 2}, {0, 1}, {24}, {24}})
      ->ArgsProduct({{3000, 4000}, {1, 2}, {0}, {1, 8, 32}, {24}})
      ->ArgsProduct({{3000, 4000}, {1, 2}, {0}, {24, 32}, {32}})
      ->Unit(benchmark::kMicrosecond)
      ->MeasureProcessCPUTime()
      ->UseRealTime();
}
BENCHMARK(BM_Transfer<rasterkit::pmShadow>)->Apply(TransferCases);
BENCHMARK(BM_Transfer<rasterkit::pmTransparent>)->Apply(TransferCases);
/// Indexed pictures of one format are copied in every mode.
BENCHMARK(BM_Transfer<rasterkit::pmOverwrite>)
    ->Apply(TransferCases)
    ->ArgsProduct({{3000, 4000}, {1, 2}, {0}, {8}, {8}})
    ->ArgsProduct({{3000, 4000}, {1, 2}, {0}, {1}, {1}});
BENCHMARK(BM_InWhite)
    ->ArgNames({"source", "threads", "from", "to"})
    ->ArgsProduct({{3000, 4000}, {1, 2}, {24}, {24, 32}})
    ->ArgsProduct({{3000, 4000}, {1, 2}, {32}, {24, 32}})
    ->ArgsProduct({{3000, 4000}, {1, 2}, {8}, {8}})
    ->ArgsProduct({{3000, 4000}, {1, 2}, {1}, {1}})
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();

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

/// The same size without scaling. OpenCV does not brighten.
void BM_OpenCvMultiply(benchmark::State& state) {
  cv::setNumThreads(1);
  TBitmap source = MakePicture(rasterkit::pf24bit, kWidth, kHeight, noise);
  TBitmap target = MakePicture(rasterkit::pf24bit, kWidth, kHeight, noise);
  cv::Mat from = MatOf(source), to = MatOf(target);
  for (auto _ : state) {
    cv::multiply(to, from, to, 1.0 / 255);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

void BM_OpenCvNearestAndWeighted(benchmark::State& state) {
  cv::setNumThreads(static_cast<int>(state.range(1)));
  const auto sourceWidth = static_cast<int>(state.range(0));
  TBitmap source = MakePicture(rasterkit::pf24bit, sourceWidth, sourceWidth * 3 / 4, noise);
  TBitmap target = MakePicture(rasterkit::pf24bit, kWidth, kHeight, noise);
  cv::Mat from = MatOf(source), to = MatOf(target), scaled;
  for (auto _ : state) {
    cv::resize(from, scaled, to.size(), 0, 0, cv::INTER_NEAREST);
    cv::addWeighted(to, 0.3, scaled, 0.7, 0, to);
    benchmark::ClobberMemory();
  }
  SetNsPerPixel(state);
}

/// Where all channels are above 250, in the target (into white) or else in the source, inverted.
void OpenCvMasked(benchmark::State& state, bool intoWhite) {
  cv::setNumThreads(static_cast<int>(state.range(1)));
  const auto width = static_cast<int>(state.range(0));
  TBitmap source = MakePicture(rasterkit::pf24bit, width, width * 3 / 4, intoWhite ? paper : noise);
  const TBitmap fresh = MakePicture(rasterkit::pf24bit, kWidth, kHeight, intoWhite ? paper : noise);
  std::unique_ptr<TBitmap> target;
  const cv::Mat from = MatOf(source);
  cv::Mat scaled, mask;
  const cv::Scalar light(251, 251, 251), white(255, 255, 255);
  rasterkit::bench::MeasurePrepared(
      state, int64_t{kWidth} * kHeight, [&] { target = fresh.Clone(); },
      [&] {
        cv::Mat to = MatOf(*target);
        cv::resize(from, scaled, to.size(), 0, 0, cv::INTER_NEAREST);
        cv::inRange(intoWhite ? to : scaled, light, white, mask);
        if (!intoWhite) cv::bitwise_not(mask, mask);
        scaled.copyTo(to, mask);
      });
}
void BM_OpenCvNearestAndNotWhite(benchmark::State& state) {
  OpenCvMasked(state, false);
}
void BM_OpenCvNearestIntoWhite(benchmark::State& state) {
  OpenCvMasked(state, true);
}

void OpenCvCases(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"source", "threads"})
      ->ArgsProduct({{3000, 4000, 6000}, {1, 2}})
      ->Unit(benchmark::kMicrosecond);
}
BENCHMARK(BM_OpenCvScaleAndOffset)
    ->ArgName("threads")
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_OpenCvMultiply)->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(BM_OpenCvNearestAndMultiply)->Apply(OpenCvCases)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(BM_OpenCvNearestAndWeighted)->Apply(OpenCvCases)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(BM_OpenCvNearestAndNotWhite)->Apply(OpenCvCases)->UseManualTime();
BENCHMARK(BM_OpenCvNearestIntoWhite)->Apply(OpenCvCases)->UseManualTime();
#endif

}  // namespace
