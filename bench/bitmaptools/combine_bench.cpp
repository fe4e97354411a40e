// Bitmaps of 12 megapixels drawn and laid over one another, resampled and made into icons, by the
// exported routines, beside a memcpy of the bytes and beside the same work of OpenCV and Qt. The
// number of threads is the last part of a name where a routine takes one. Time is real time.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/icon.h>

#include "bench/support/bench_pictures.h"
#include "bench/support/bench_timing.h"

#if RASTERKIT_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#if RASTERKIT_BENCH_QT
#include <QImage>
#include <QPainter>
#endif

namespace rasterkit {
namespace {

constexpr int kWidth = 4000, kHeight = 3000;
constexpr int64_t kPixels = int64_t{kWidth} * kHeight;

/// A photograph; with 32 bits each pixel has an alpha of its own, with 1 bit it is a drawing.
TBitmap Picture(TPixelFormat format) {
  static const Raster photo = bench::PhotoLike(kWidth, kHeight);
  static const Raster plan = bench::PlanLike(kWidth, kHeight);
  TBitmap bitmap((format == pf1bit ? plan : photo).Clone());
  bitmap.SetPixelFormat(format);
  if (format != pf32bit) return bitmap;
  std::mt19937 random(5);
  for (int y = 0; y < kHeight; ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    for (size_t x = 0; x < kWidth; ++x) row[4 * x + 3] = static_cast<uint8_t>(random());
  }
  return bitmap;
}

template <class Work>
void Measure(benchmark::State& state, Work work) {
  bench::MeasurePrepared(
      state, kPixels, [] {}, work);
}

template <class Run>
void Add(const std::string& name, Run run) {
  benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime()->Unit(benchmark::kMicrosecond);
}

void AddMemcpy(const char* name, TPixelFormat format) {
  Add(name, [=](benchmark::State& state) {
    const TBitmap picture = Picture(format);
    std::vector<uint8_t> copy(picture.Stride() * kHeight);
    Measure(state, [&] { std::memcpy(copy.data(), picture.ScanLine(0), copy.size()); });
  });
}

void AddDrawBlended(const char* name, TPixelFormat format, uint8_t alpha) {
  Add(name, [=](benchmark::State& state) {
    TBitmap target = Picture(pf24bit), source = Picture(format);
    Measure(state, [&] {
      DrawBlendedBitmap(&source, target.Canvas(), {0, 0, kWidth, kHeight}, alpha);
    });
  });
}

/// Only the engine's branch works in threads; the others are asked with one.
void AddCombine(const std::string& name, TPixelFormat targetFormat, TPixelFormat sourceFormat,
                uint8_t alpha, int threads = 1) {
  Add(name + "/" + std::to_string(threads), [=](benchmark::State& state) {
    TBitmap target = Picture(targetFormat), source = Picture(sourceFormat);
    Measure(state, [&] { CombineBitmapsTransparent(&target, &source, alpha, threads, nullptr); });
  });
}

using GeoCombination = void (*)(TBitmap*, TBitmap*, int32_t, bool, int32_t, TProgressEvent);

void AddGeo(const std::string& name, GeoCombination combine, TPixelFormat sourceFormat) {
  for (const bool gray : {false, true}) {
    for (const int threads : {1, 2}) {
      Add(name + (gray ? " gray/rasterkit/" : "/rasterkit/") + std::to_string(threads),
          [=](benchmark::State& state) {
            TBitmap target = Picture(pf24bit), source = Picture(sourceFormat);
            Measure(state, [&] { combine(&target, &source, 30, gray, threads, nullptr); });
          });
    }
  }
}

/// Pixels are those of the larger picture.
void AddResize(const char* name, TPixelFormat format, int width, int height) {
  Add(name, [=](benchmark::State& state) {
    const TBitmap fresh = Picture(format);
    std::unique_ptr<TBitmap> bitmap;
    bench::MeasurePrepared(
        state, std::max(kPixels, int64_t{width} * height), [&] { bitmap = fresh.Clone(); },
        [&] { ResizeBitmap(bitmap, width, height, true); });
  });
}

void AddIcon(const char* name, TPixelFormat format, bool leftHalfOnly) {
  Add(name, [=](benchmark::State& state) {
    TBitmap bitmap = Picture(format);
    TIcon icon;
    Measure(state, [&] { CopyBitmapToIcon(&bitmap, icon, leftHalfOnly); });
  });
}

#if RASTERKIT_BENCH_OPENCV
cv::Mat MatOf(TBitmap& bitmap) {
  const int bits = bitmap.StoredBits();
  const int type = bits == 24 ? CV_8UC3 : bits == 32 ? CV_8UC4 : CV_8UC1;
  return {bitmap.Height(), bitmap.Width(), type, bitmap.ScanLine(0), bitmap.Stride()};
}

template <class Work>
void AddOpenCv(const std::string& name, TPixelFormat sourceFormat, int threads, Work work) {
  Add(name + "/opencv/" + std::to_string(threads), [=](benchmark::State& state) {
    cv::setNumThreads(threads);
    TBitmap target = Picture(pf24bit), source = Picture(sourceFormat);
    cv::Mat to = MatOf(target), from = MatOf(source);
    Measure(state, [&] { work(to, from); });
  });
}

void AddOpenCvResize(const char* name, TPixelFormat format, int width, int height, int method) {
  Add(name, [=](benchmark::State& state) {
    cv::setNumThreads(1);
    TBitmap source = Picture(format);
    const cv::Mat from = MatOf(source);
    cv::Mat to;
    bench::MeasurePrepared(
        state, std::max(kPixels, int64_t{width} * height), [&] { to = cv::Mat(); },
        [&] {
          cv::resize(from, to, {width, height}, 0, 0, method);
        });
  });
}

/// OpenCV has no rows of bits: a mask of bytes, ready made, takes their place.
void AddOpenCvKey(const char* name) {
  Add(name, [=](benchmark::State& state) {
    cv::setNumThreads(1);
    TBitmap target = Picture(pf24bit), plan = Picture(pf1bit);
    cv::Mat to = MatOf(target), mask(kHeight, kWidth, CV_8UC1);
    for (int y = 0; y < kHeight; ++y) {
      const uint8_t* row = plan.ScanLine(y);
      for (int x = 0; x < kWidth; ++x)
        mask.at<uint8_t>(y, x) = (row[x / 8] << x % 8 & 128) == 0 ? 255 : 0;
    }
    Measure(state, [&] { to.setTo(cv::Scalar(0, 0, 0), mask); });
  });
}

void RegisterOpenCv() {
  for (const int threads : {1, 2}) {
    AddOpenCv("CombineGeoResTrans 24 over 24", pf24bit, threads,
              [](cv::Mat& to, const cv::Mat& from) { cv::addWeighted(to, 0.3, from, 0.7, 0, to); });
    AddOpenCv("CombineGeoResFix 24 over 24", pf24bit, threads,
              [](cv::Mat& to, const cv::Mat& from) { cv::multiply(to, from, to, 1.0 / 255); });
    AddOpenCv("CombineBitmapsTransparent 24 over 24", pf24bit, threads,
              [](cv::Mat& to, const cv::Mat& from) { cv::addWeighted(to, 0.5, from, 0.5, 0, to); });
  }
  AddOpenCvKey("CombineBitmapsTransparent 1 over 24, key/opencv/1");
  AddOpenCvResize("ResizeBitmap 24 to 1000 x 750/opencv", pf24bit, 1000, 750, cv::INTER_AREA);
  AddOpenCvResize("ResizeBitmap 24 to 6000 x 4500/opencv", pf24bit, 6000, 4500, cv::INTER_LINEAR);
  AddOpenCvResize("ResizeBitmap 32 to 1000 x 750/opencv", pf32bit, 1000, 750, cv::INTER_AREA);
  AddOpenCvResize("ResizeBitmap 32 to 6000 x 4500/opencv", pf32bit, 6000, 4500, cv::INTER_LINEAR);
  AddOpenCvResize("ResizeBitmap 8 to 1000 x 750/opencv", pf8bit, 1000, 750, cv::INTER_NEAREST);
  AddOpenCvResize("ResizeBitmap 8 to 6000 x 4500/opencv", pf8bit, 6000, 4500, cv::INTER_NEAREST);
}
#endif

#if RASTERKIT_BENCH_QT
QImage ImageOf(TBitmap& bitmap, QImage::Format format) {
  return QImage(bitmap.ScanLine(0), kWidth, kHeight, static_cast<qsizetype>(bitmap.Stride()),
                format);
}

void AddQtBlend(const char* name, TPixelFormat format, int alpha) {
  Add(name, [=](benchmark::State& state) {
    TBitmap under = Picture(pf24bit), over = Picture(format);
    QImage target = ImageOf(under, QImage::Format_BGR888).convertToFormat(QImage::Format_RGB32);
    const QImage source =
        ImageOf(over, format == pf24bit ? QImage::Format_BGR888 : QImage::Format_ARGB32)
            .convertToFormat(format == pf24bit ? QImage::Format_RGB32
                                               : QImage::Format_ARGB32_Premultiplied);
    Measure(state, [&] {
      QPainter painter(&target);
      painter.setOpacity(alpha / 255.0);
      painter.drawImage(0, 0, source);
    });
  });
}

void AddQtNearest1(const char* name, int width, int height) {
  Add(name, [=](benchmark::State& state) {
    TBitmap bitmap = Picture(pf1bit);
    const QImage source = ImageOf(bitmap, QImage::Format_Mono);
    QImage made;
    bench::MeasurePrepared(
        state, std::max(kPixels, int64_t{width} * height), [&] { made = QImage(); },
        [&] { made = source.scaled(width, height); });
  });
}
#endif

void RegisterOwn() {
  AddMemcpy("memcpy 8", pf8bit);
  AddMemcpy("memcpy 24", pf24bit);
  AddMemcpy("memcpy 32", pf32bit);
  AddDrawBlended("DrawBlendedBitmap 24 over 24/rasterkit", pf24bit, 128);
  AddDrawBlended("DrawBlendedBitmap 32 over 24/rasterkit", pf32bit, 255);
  AddDrawBlended("DrawBlendedBitmap 8 over 24/rasterkit", pf8bit, 128);
  for (const int threads : {1, 2})
    AddCombine("CombineBitmapsTransparent 1 over 24, key/rasterkit", pf24bit, pf1bit, 255, threads);
  AddCombine("CombineBitmapsTransparent 1 over 32, key/rasterkit", pf32bit, pf1bit, 255);
  AddCombine("CombineBitmapsTransparent 1 over 24, blended/rasterkit", pf24bit, pf1bit, 254);
  AddCombine("CombineBitmapsTransparent 24 over 24/rasterkit", pf24bit, pf24bit, 128);
  AddCombine("CombineBitmapsTransparent 32 over 24/rasterkit", pf24bit, pf32bit, 255);
  AddCombine("CombineBitmapsTransparent 32 over 32/rasterkit", pf32bit, pf32bit, 255);
  AddGeo("CombineGeoResTrans 24 over 24", CombineGeoResTrans, pf24bit);
  AddGeo("CombineGeoResTrans 8 over 24", CombineGeoResTrans, pf8bit);
  AddGeo("CombineGeoResFix 24 over 24", CombineGeoResFix, pf24bit);
  AddGeo("CombineGeoResFix 8 over 24", CombineGeoResFix, pf8bit);
  AddResize("ResizeBitmap 24 to 1000 x 750/rasterkit", pf24bit, 1000, 750);
  AddResize("ResizeBitmap 24 to 6000 x 4500/rasterkit", pf24bit, 6000, 4500);
  AddResize("ResizeBitmap 32 to 1000 x 750/rasterkit", pf32bit, 1000, 750);
  AddResize("ResizeBitmap 32 to 6000 x 4500/rasterkit", pf32bit, 6000, 4500);
  for (const auto& [bits, format] : {std::pair{"16", pf16bit}, {"8", pf8bit}, {"1", pf1bit}}) {
    const std::string name = std::string("ResizeBitmap ") + bits;
    AddResize((name + " to 1000 x 750/rasterkit").c_str(), format, 1000, 750);
    AddResize((name + " to 6000 x 4500/rasterkit").c_str(), format, 6000, 4500);
  }
  AddIcon("CopyBitmapToIcon 24/rasterkit", pf24bit, false);
  AddIcon("CopyBitmapToIcon 24, left half/rasterkit", pf24bit, true);
  AddIcon("CopyBitmapToIcon 32/rasterkit", pf32bit, false);
}

const bool kRegistered = [] {
  RegisterOwn();
#if RASTERKIT_BENCH_OPENCV
  RegisterOpenCv();
#endif
#if RASTERKIT_BENCH_QT
  AddQtBlend("DrawBlendedBitmap 24 over 24/qt over 32", pf24bit, 128);
  AddQtBlend("DrawBlendedBitmap 32 over 24/qt over 32", pf32bit, 255);
  AddQtNearest1("ResizeBitmap 1 to 1000 x 750/qt", 1000, 750);
  AddQtNearest1("ResizeBitmap 1 to 6000 x 4500/qt", 6000, 4500);
#endif
  return true;
}();

}  // namespace
}  // namespace rasterkit
