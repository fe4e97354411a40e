// Composition of whole bitmaps of 12 megapixels beside their peers: a mirror in place beside
// OpenCV's flip (into another picture, and in place) and Leptonica's (in place), equality beside
// memcmp, everything beside a memcpy of the bytes. Items are pixels.
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/bitmap.h>

#if __has_include(<opencv2/core.hpp>)
#include <opencv2/core.hpp>
#define RASTERKIT_BESIDE_OPENCV
#endif
#ifdef RASTERKIT_BENCH_LEPTONICA
#include <leptonica/allheaders.h>
#endif

namespace {

using rasterkit::TBitmap;
using rasterkit::TPixelFormat;

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;

TBitmap Picture(TPixelFormat format, int width = kWidth, int height = kHeight) {
  TBitmap bitmap;
  bitmap.ResetPixels(format, width, height);
  std::mt19937 random(1);
  for (int y = 0; y < height; ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    for (size_t i = 0; i < bitmap.Stride(); ++i) row[i] = static_cast<uint8_t>(random());
  }
  return bitmap;
}

size_t BytesOf(const TBitmap& bitmap) {
  return bitmap.Stride() * static_cast<size_t>(bitmap.Height());
}

void CountPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void Memcpy(benchmark::State& state, TPixelFormat format) {
  const TBitmap picture = Picture(format);
  std::vector<uint8_t> copy(BytesOf(picture));
  for (auto _ : state) {
    std::memcpy(copy.data(), picture.ScanLine(0), copy.size());
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}

void Mirror(benchmark::State& state, TPixelFormat format, bool horizontal) {
  TBitmap picture = Picture(format);
  for (auto _ : state) {
    rasterkit::SwapBitmap(horizontal, &picture);
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}

void SwapAlpha(benchmark::State& state) {
  TBitmap picture = Picture(rasterkit::pf32bit);
  for (auto _ : state) {
    rasterkit::SwapAlpha(&picture);
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}

void Same(benchmark::State& state, TPixelFormat format) {
  const TBitmap picture = Picture(format);
  const std::unique_ptr<TBitmap> other = picture.Clone();
  for (auto _ : state) {
    bool same = rasterkit::BitmapsAreSame(picture, *other);
    benchmark::DoNotOptimize(same);
  }
  CountPixels(state);
}

void Memcmp(benchmark::State& state, TPixelFormat format) {
  const TBitmap picture = Picture(format);
  const std::unique_ptr<TBitmap> other = picture.Clone();
  for (auto _ : state) {
    int order = std::memcmp(picture.ScanLine(0), other->ScanLine(0), BytesOf(picture));
    benchmark::DoNotOptimize(order);
  }
  CountPixels(state);
}

/// The copy of the picture that a watermark is pressed into is part of the time.
void Watermark(benchmark::State& state, int size) {
  const TBitmap picture = Picture(rasterkit::pf24bit);
  TBitmap mark = Picture(rasterkit::pf8bit, size, size);
  for (auto _ : state) {
    benchmark::DoNotOptimize(rasterkit::WaterMarkedBitmap(picture, mark));
  }
  CountPixels(state);
}

void Register(const char* name, void (*run)(benchmark::State&, TPixelFormat), TPixelFormat format) {
  benchmark::RegisterBenchmark(name, run, format)->Unit(benchmark::kMillisecond);
}

#ifdef RASTERKIT_BESIDE_OPENCV
/// 1 mirrors left and right, 0 top and bottom.
void OpenCvFlip(benchmark::State& state, int type, int direction, bool inPlace) {
  cv::setNumThreads(1);
  cv::Mat picture(kHeight, kWidth, type), target(kHeight, kWidth, type);
  cv::randu(picture, 0, 256);
  for (auto _ : state) {
    cv::flip(picture, inPlace ? picture : target, direction);
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}

void RegisterOpenCv() {
  const auto add = [](const char* name, int type, int direction, bool inPlace) {
    benchmark::RegisterBenchmark(name, OpenCvFlip, type, direction, inPlace)
        ->Unit(benchmark::kMillisecond);
  };
  add("mirror left-right 24/opencv", CV_8UC3, 1, false);
  add("mirror left-right 24/opencv in place", CV_8UC3, 1, true);
  add("mirror left-right 32/opencv", CV_8UC4, 1, false);
  add("mirror left-right 8/opencv", CV_8UC1, 1, false);
  add("mirror top-bottom 24/opencv", CV_8UC3, 0, false);
  add("mirror top-bottom 24/opencv in place", CV_8UC3, 0, true);
}
#endif

#ifdef RASTERKIT_BENCH_LEPTONICA
/// In place, left and right.
void LeptonicaFlip(benchmark::State& state, int bits) {
  PIX* picture = pixCreate(kWidth, kHeight, bits);
  std::mt19937 random(1);
  uint32_t* words = pixGetData(picture);
  for (int i = 0; i < pixGetWpl(picture) * kHeight; ++i) {
    words[i] = static_cast<uint32_t>(random());
  }
  for (auto _ : state) {
    pixFlipLR(picture, picture);
    benchmark::ClobberMemory();
  }
  CountPixels(state);
  pixDestroy(&picture);
}

void RegisterLeptonica() {
  const auto add = [](const char* name, int bits) {
    benchmark::RegisterBenchmark(name, LeptonicaFlip, bits)->Unit(benchmark::kMillisecond);
  };
  add("mirror left-right 32/leptonica", 32);
  add("mirror left-right 8/leptonica", 8);
  add("mirror left-right 1/leptonica", 1);
}
#endif

void RegisterMirrors() {
  const auto add = [](const char* name, TPixelFormat format, bool horizontal) {
    benchmark::RegisterBenchmark(name, Mirror, format, horizontal)->Unit(benchmark::kMillisecond);
  };
  add("mirror left-right 24/rasterkit", rasterkit::pf24bit, true);
  add("mirror left-right 32/rasterkit", rasterkit::pf32bit, true);
  add("mirror left-right 8/rasterkit", rasterkit::pf8bit, true);
  add("mirror left-right 1/rasterkit", rasterkit::pf1bit, true);
  add("mirror top-bottom 24/rasterkit", rasterkit::pf24bit, false);
}

const bool kRegistered = [] {
  Register("memcpy 24", Memcpy, rasterkit::pf24bit);
  Register("memcpy 32", Memcpy, rasterkit::pf32bit);
  RegisterMirrors();
#ifdef RASTERKIT_BESIDE_OPENCV
  RegisterOpenCv();
#endif
#ifdef RASTERKIT_BENCH_LEPTONICA
  RegisterLeptonica();
#endif
  Register("equality 24/rasterkit", Same, rasterkit::pf24bit);
  Register("equality 24/memcmp", Memcmp, rasterkit::pf24bit);
  Register("equality 32/rasterkit", Same, rasterkit::pf32bit);
  Register("equality 32/memcmp", Memcmp, rasterkit::pf32bit);
  benchmark::RegisterBenchmark("swap alpha", SwapAlpha)->Unit(benchmark::kMillisecond);
  for (const int size : {200, 4000})
    benchmark::RegisterBenchmark(("watermark of " + std::to_string(size) + " pixels").c_str(),
                                 Watermark, size)
        ->Unit(benchmark::kMillisecond);
  return true;
}();

}  // namespace
