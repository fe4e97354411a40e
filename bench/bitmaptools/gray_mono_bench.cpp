// Operations that look at the gray of each pixel, row by row on one thread, beside a memcpy of the
// picture's bytes and beside what OpenCV, Leptonica and Qt have for the same (their gray has the
// usual weights 0.299, 0.587, 0.114: the same work, other numbers).
//
// The number behind a name is the picture's height; it is 4000 pixels wide. 3000 rows come from
// memory, 250 stay in the cache. What works in place gets a fresh picture each time, outside the
// clock.
#include <cstdint>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/kernels/gray/gray_bits.h>
#include <rasterkit/kernels/gray/recolor.h>
#include <rasterkit/kernels/palette/index_rows.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

#include "bench/support/bench_pictures.h"
#include "bench/support/bench_timing.h"

#if RASTERKIT_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#if RASTERKIT_BENCH_LEPTONICA
#include <leptonica/allheaders.h>
#endif
#if RASTERKIT_BENCH_QT
#include <QImage>
#endif

namespace {

using rasterkit::PixelMemory;
using rasterkit::Raster;

constexpr int kWidth = 4000;
constexpr int kThreshold = 127;
constexpr size_t kRowBytes = size_t{kWidth} * 3;

const Raster& Photo() {
  static const Raster photo = rasterkit::bench::PhotoLike(kWidth, 3000);
  return photo;
}

/// The first rows of the photograph, B G R or with alpha, without padding.
PixelMemory Picture(int height, size_t bytesPerPixel = 3) {
  PixelMemory picture(kWidth * bytesPerPixel * static_cast<size_t>(height));
  for (int y = 0; y < height; ++y) {
    const uint8_t* row = Photo().Row(y);
    uint8_t* target = picture.Data() + static_cast<size_t>(y) * kWidth * bytesPerPixel;
    for (size_t x = 0; x < kWidth; ++x) std::memcpy(target + x * bytesPerPixel, row + 3 * x, 3);
  }
  return picture;
}

template <class Prepare, class Work>
void Measure(benchmark::State& state, Prepare prepare, Work work) {
  rasterkit::bench::MeasurePrepared(state, state.range(0) * kWidth, prepare, work);
}

/// Measures `work(pixels)`, which changes a picture of its own, on a fresh copy each time.
template <class Work>
void InPlace(benchmark::State& state, size_t bytesPerPixel, Work work) {
  const PixelMemory fresh = Picture(static_cast<int>(state.range(0)), bytesPerPixel);
  PixelMemory picture(fresh.Size());
  Measure(
      state, [&] { std::memcpy(picture.Data(), fresh.Data(), fresh.Size()); },
      [&] { work(picture.Data()); });
}

/// Measures `work(row, y)` for every row.
template <class Work>
void RowsInPlace(benchmark::State& state, size_t bytesPerPixel, Work work) {
  const auto height = static_cast<size_t>(state.range(0));
  InPlace(state, bytesPerPixel, [=](uint8_t* pixels) {
    for (size_t y = 0; y < height; ++y) work(pixels + y * kWidth * bytesPerPixel, y);
  });
}

void Memcpy(benchmark::State& state) {
  PixelMemory copy(kRowBytes * static_cast<size_t>(state.range(0)));
  InPlace(state, 3, [&](uint8_t* pixels) { std::memcpy(copy.Data(), pixels, copy.Size()); });
}

void GrayInPlace(benchmark::State& state) {
  RowsInPlace(state, 3,
              [](uint8_t* row, size_t) { rasterkit::kernels::GrayInPlace24(row, kWidth); });
}

void GrayOf24(benchmark::State& state) {
  PixelMemory gray(size_t{kWidth} * static_cast<size_t>(state.range(0)));
  RowsInPlace(state, 3, [&](uint8_t* row, size_t y) {
    rasterkit::kernels::GrayOfRow24(row, kWidth, gray.Data() + y * kWidth);
  });
}

void ThresholdToBits(benchmark::State& state) {
  PixelMemory bits(size_t{kWidth} / 8 * static_cast<size_t>(state.range(0)));
  RowsInPlace(state, 3, [&](uint8_t* row, size_t y) {
    rasterkit::kernels::GrayBits24(row, kWidth, kThreshold + 1, bits.Data() + y * (kWidth / 8));
  });
}

void LighterToWhite24(benchmark::State& state) {
  RowsInPlace(state, 3, [](uint8_t* row, size_t) {
    rasterkit::kernels::RecolorByGray24(row, kWidth, rasterkit::kernels::GraysAbove(kThreshold),
                                        0xFFFFFF);
  });
}

void LighterToWhite32(benchmark::State& state) {
  RowsInPlace(state, 4, [](uint8_t* row, size_t) {
    rasterkit::kernels::RecolorByGray32(row, kWidth, rasterkit::kernels::GraysAbove(kThreshold),
                                        0xFFFFFFFF);
  });
}

void LighterToWhite16(benchmark::State& state) {
  RowsInPlace(state, 2, [](uint8_t* row, size_t) {
    rasterkit::kernels::RecolorByGray16(row, kWidth, rasterkit::kernels::GraysAbove(kThreshold),
                                        0xFFFF);
  });
}

void KeyColor(benchmark::State& state) {
  RowsInPlace(state, 3, [](uint8_t* row, size_t) {
    rasterkit::kernels::ReplaceColor24(row, kWidth, 0x405060, 0xFFFFFF);
  });
}

void LighterToWhite8(benchmark::State& state) {
  rasterkit::kernels::IndexSet light;
  for (int i = 128; i < 256; ++i) light.Add(static_cast<uint8_t>(i));
  RowsInPlace(state, 1, [&](uint8_t* row, size_t) {
    rasterkit::kernels::ReplaceIndexes(row, kWidth, light, 255);
  });
}

#define RASTERKIT_CASE(name) \
  BENCHMARK(name)->Arg(3000)->Arg(250)->UseManualTime()->Unit(benchmark::kMicrosecond)

RASTERKIT_CASE(Memcpy);
RASTERKIT_CASE(GrayInPlace);
RASTERKIT_CASE(GrayOf24);
RASTERKIT_CASE(ThresholdToBits);
RASTERKIT_CASE(LighterToWhite24);
RASTERKIT_CASE(LighterToWhite32);
RASTERKIT_CASE(LighterToWhite16);
RASTERKIT_CASE(LighterToWhite8);
RASTERKIT_CASE(KeyColor);

#if RASTERKIT_BENCH_OPENCV

cv::Mat MatOf(benchmark::State& state, uint8_t* pixels) {
  cv::setNumThreads(1);
  return {static_cast<int>(state.range(0)), kWidth, CV_8UC3, pixels};
}

void OpenCvGrayToOwnPlane(benchmark::State& state) {
  cv::Mat gray(static_cast<int>(state.range(0)), kWidth, CV_8UC1);
  InPlace(state, 3,
          [&](uint8_t* pixels) { cv::cvtColor(MatOf(state, pixels), gray, cv::COLOR_BGR2GRAY); });
}

void OpenCvGrayInPlace(benchmark::State& state) {
  cv::Mat gray(static_cast<int>(state.range(0)), kWidth, CV_8UC1);
  InPlace(state, 3, [&](uint8_t* pixels) {
    cv::Mat picture = MatOf(state, pixels);
    cv::cvtColor(picture, gray, cv::COLOR_BGR2GRAY);
    cv::cvtColor(gray, picture, cv::COLOR_GRAY2BGR);
  });
}

/// To bytes 0 and 255; OpenCV has no rows of bits.
void OpenCvThreshold(benchmark::State& state) {
  cv::Mat gray(static_cast<int>(state.range(0)), kWidth, CV_8UC1);
  cv::Mat mask = gray.clone();
  InPlace(state, 3, [&](uint8_t* pixels) {
    cv::cvtColor(MatOf(state, pixels), gray, cv::COLOR_BGR2GRAY);
    cv::threshold(gray, mask, kThreshold, 255, cv::THRESH_BINARY);
  });
}

void OpenCvLighterToWhite(benchmark::State& state) {
  cv::Mat gray(static_cast<int>(state.range(0)), kWidth, CV_8UC1);
  cv::Mat mask = gray.clone();
  InPlace(state, 3, [&](uint8_t* pixels) {
    cv::Mat picture = MatOf(state, pixels);
    cv::cvtColor(picture, gray, cv::COLOR_BGR2GRAY);
    cv::compare(gray, kThreshold, mask, cv::CMP_GT);
    picture.setTo(cv::Scalar(255, 255, 255), mask);
  });
}

void OpenCvKeyColor(benchmark::State& state) {
  cv::Mat mask(static_cast<int>(state.range(0)), kWidth, CV_8UC1);
  InPlace(state, 3, [&](uint8_t* pixels) {
    cv::Mat picture = MatOf(state, pixels);
    const cv::Scalar key(0x60, 0x50, 0x40);
    cv::inRange(picture, key, key, mask);
    picture.setTo(cv::Scalar(255, 255, 255), mask);
  });
}

RASTERKIT_CASE(OpenCvGrayToOwnPlane);
RASTERKIT_CASE(OpenCvGrayInPlace);
RASTERKIT_CASE(OpenCvThreshold);
RASTERKIT_CASE(OpenCvLighterToWhite);
RASTERKIT_CASE(OpenCvKeyColor);

#endif

#if RASTERKIT_BENCH_LEPTONICA

/// Measures `work(source)`, which makes a picture, from 32-bit pixels: Leptonica's only true
/// color.
template <class Work>
void FromPix(benchmark::State& state, Work work) {
  const auto height = static_cast<int>(state.range(0));
  const PixelMemory picture = Picture(height, 4);
  PIX* source = pixCreate(kWidth, height, 32);
  std::memcpy(pixGetData(source), picture.Data(), picture.Size());
  pixEndianByteSwap(source);
  PIX* made = nullptr;
  Measure(
      state, [&] { pixDestroy(&made); }, [&] { made = work(source); });
  pixDestroy(&made);
  pixDestroy(&source);
}

void LeptonicaThresholdToBits(benchmark::State& state) {
  FromPix(state, [](PIX* source) {
    PIX* gray = pixConvertRGBToLuminance(source);
    PIX* bits = pixThresholdToBinary(gray, kThreshold + 1);
    pixDestroy(&gray);
    return bits;
  });
}

RASTERKIT_CASE(LeptonicaThresholdToBits);

#endif

#if RASTERKIT_BENCH_QT

void QtThresholdToBits(benchmark::State& state) {
  const auto height = static_cast<int>(state.range(0));
  const PixelMemory picture = Picture(height);
  const QImage source(picture.Data(), kWidth, height, kRowBytes, QImage::Format_BGR888);
  QImage bits;
  Measure(
      state, [&] { bits = QImage(); },
      [&] {
        bits = source.convertToFormat(QImage::Format_Mono, Qt::ThresholdDither | Qt::MonoOnly);
      });
}

RASTERKIT_CASE(QtThresholdToBits);

#endif

}  // namespace
