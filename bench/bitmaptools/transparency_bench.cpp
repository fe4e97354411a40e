// Transparency, gray and black-and-white of whole bitmaps of 12 megapixels, one thread, beside a
// memcpy of the bytes and beside the same work of OpenCV, Leptonica and Qt (whose grays have
// weights of their own). Each pass gets a fresh bitmap, copied outside the clock. What only changes
// a palette or one pixel (BitmapToGray and CheckTransColForPDF of some formats) is not timed.
#include <array>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/pixels/transparency.h>
#include <rasterkit/graphics/bitmap.h>

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

namespace rasterkit {
namespace {

constexpr int kWidth = 4000, kHeight = 3000;
constexpr int64_t kPixels = int64_t{kWidth} * kHeight;
constexpr uint8_t kThreshold = 127;

/// The photograph in a format; an 8-bit one has a palette of 256 colors.
TBitmap Picture(TPixelFormat format) {
  static const Raster photo = bench::PhotoLike(kWidth, kHeight);
  TBitmap bitmap(photo.Clone());
  bitmap.SetPixelFormat(format);
  return bitmap;
}

template <class Work>
void Measure(benchmark::State& state, TPixelFormat format, Work work) {
  const TBitmap fresh = Picture(format);
  std::unique_ptr<TBitmap> bitmap;
  bench::MeasurePrepared(
      state, kPixels, [&] { bitmap = fresh.Clone(); }, [&] { work(*bitmap); });
}

void Memcpy(benchmark::State& state, TPixelFormat format) {
  const TBitmap picture = Picture(format);
  std::vector<uint8_t> copy(picture.Stride() * kHeight);
  bench::MeasurePrepared(
      state, kPixels, [] {}, [&] { std::memcpy(copy.data(), picture.ScanLine(0), copy.size()); });
}

void RunSetToTransparent(benchmark::State& state, TPixelFormat format) {
  Measure(state, format, [](TBitmap& bitmap) { SetToTransparent(&bitmap, kThreshold); });
}
void RunSetColorAbGray(benchmark::State& state, TPixelFormat format) {
  Measure(state, format,
          [](TBitmap& bitmap) { SetColorAbGray(&bitmap, kThreshold, 200, 100, 50, 255); });
}
void RunSetColorBisGray(benchmark::State& state, TPixelFormat format) {
  Measure(state, format,
          [](TBitmap& bitmap) { SetColorBisGray(&bitmap, kThreshold, 200, 100, 50, 255); });
}
/// White is entry 17: it changes places with the last one in every pixel.
void RunCheckTransColForPDF(benchmark::State& state, TPixelFormat format) {
  std::array<tagPALETTEENTRY, 256> entries{};
  entries[17] = {255, 255, 255, 0};
  const HPALETTE palette(entries);
  Measure(state, format, [&](TBitmap& bitmap) {
    bitmap.SetPalette(palette);
    CheckTransColForPDF(&bitmap);
  });
}
void RunSetTransColor(benchmark::State& state, TPixelFormat format) {
  Measure(state, format, [](TBitmap& bitmap) { SetTransColor(bitmap, 0x00FF00); });
}
void RunResetTransparent(benchmark::State& state, TPixelFormat format) {
  Measure(state, format, [](TBitmap& bitmap) {
    bitmap.SetTransparent(true);
    ResetTransparent(bitmap);
  });
}
void RunColorBmpTo1Bit(benchmark::State& state, TPixelFormat format) {
  Measure(state, format,
          [](TBitmap& bitmap) { ColorBmpTo1Bit(&bitmap, 128, 0, 0, 128, 255, 255, 200); });
}
void RunColorBmpToSW(benchmark::State& state, TPixelFormat format) {
  Measure(state, format, [](TBitmap& bitmap) { ColorBmpToSW(&bitmap, 128); });
}
void RunBitmapToGray(benchmark::State& state, TPixelFormat format) {
  Measure(state, format, [](TBitmap& bitmap) { BitmapToGray(&bitmap, true); });
}
void RunBitmapToGray8(benchmark::State& state, TPixelFormat format) {
  Measure(state, format, [](TBitmap& bitmap) { BitmapToGray(&bitmap, false); });
}

void Register(const std::string& name, void (*run)(benchmark::State&, TPixelFormat),
              TPixelFormat format) {
  benchmark::RegisterBenchmark(name.c_str(), run, format)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

#if RASTERKIT_BENCH_OPENCV
void OpenCv(benchmark::State& state, TPixelFormat format, void (*work)(cv::Mat&)) {
  cv::setNumThreads(1);
  const int type = format == pf24bit ? CV_8UC3 : format == pf32bit ? CV_8UC4 : CV_8UC1;
  Measure(state, format, [=](TBitmap& bitmap) {
    cv::Mat mat(kHeight, kWidth, type, bitmap.ScanLine(0), bitmap.Stride());
    work(mat);
  });
}

/// The mask, and what it needs for itself, is part of the work, as in a program that calls it.
void OpenCvRecolor(cv::Mat& mat) {
  cv::Mat gray, mask;
  cv::cvtColor(mat, gray, mat.channels() == 4 ? cv::COLOR_BGRA2GRAY : cv::COLOR_BGR2GRAY);
  cv::compare(gray, kThreshold, mask, cv::CMP_GT);
  mat.setTo(cv::Scalar(255, 255, 255, 255), mask);
}
void OpenCvRecolorIndexes(cv::Mat& mat) {
  cv::Mat table(1, 256, CV_8UC1);
  for (int i = 0; i < 256; ++i) table.at<uint8_t>(i) = static_cast<uint8_t>(i > 127 ? 255 : i);
  cv::LUT(mat, table, mat);
}
void OpenCvKeyColor(cv::Mat& mat) {
  cv::Mat mask;
  const cv::Vec3b key = mat.at<cv::Vec3b>(kHeight - 1, 0);
  cv::inRange(mat, key, key, mask);
  mat.setTo(cv::Scalar(0, 255, 0), mask);
}
void OpenCvClearToWhite(cv::Mat& mat) {
  cv::Mat alpha, mask;
  cv::extractChannel(mat, alpha, 3);
  cv::compare(alpha, 0, mask, cv::CMP_EQ);
  mat.setTo(cv::Scalar(255, 255, 255, 255), mask);
}
void OpenCvGray(cv::Mat& mat) {
  cv::Mat gray;
  cv::cvtColor(mat, gray, cv::COLOR_BGR2GRAY);
  cv::cvtColor(gray, mat, cv::COLOR_GRAY2BGR);
}
void OpenCvGray8(cv::Mat& mat) {
  cv::Mat gray;
  cv::cvtColor(mat, gray, mat.channels() == 4 ? cv::COLOR_BGRA2GRAY : cv::COLOR_BGR2GRAY);
  benchmark::DoNotOptimize(gray.data);
}
/// To bytes 0 and 255; OpenCV has no rows of bits.
void OpenCvThreshold(cv::Mat& mat) {
  cv::Mat gray;
  cv::cvtColor(mat, gray, mat.channels() == 4 ? cv::COLOR_BGRA2GRAY : cv::COLOR_BGR2GRAY);
  cv::threshold(gray, gray, kThreshold, 255, cv::THRESH_BINARY);
  benchmark::DoNotOptimize(gray.data);
}

void RegisterOpenCv() {
  const auto add = [](const char* name, TPixelFormat format, void (*work)(cv::Mat&)) {
    benchmark::RegisterBenchmark(name, OpenCv, format, work)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
  };
  add("SetToTransparent 24/opencv", pf24bit, OpenCvRecolor);
  add("SetToTransparent 32/opencv", pf32bit, OpenCvRecolor);
  add("SetToTransparent 8/opencv", pf8bit, OpenCvRecolorIndexes);
  add("CheckTransColForPDF 8/opencv", pf8bit, OpenCvRecolorIndexes);
  add("SetTransColor 24/opencv", pf24bit, OpenCvKeyColor);
  add("ResetTransparent 32/opencv", pf32bit, OpenCvClearToWhite);
  add("BitmapToGray 24 in place/opencv", pf24bit, OpenCvGray);
  add("BitmapToGray 24 to 8/opencv", pf24bit, OpenCvGray8);
  add("BitmapToGray 32 to 8/opencv", pf32bit, OpenCvGray8);
  add("ColorBmpToSW 24/opencv", pf24bit, OpenCvThreshold);
  add("ColorBmpToSW 32/opencv", pf32bit, OpenCvThreshold);
}
#endif

#if RASTERKIT_BENCH_LEPTONICA
/// From 32-bit pixels: Leptonica's only true color.
void LeptonicaThreshold(benchmark::State& state) {
  const TBitmap picture = Picture(pf32bit);
  PIX* source = pixCreate(kWidth, kHeight, 32);
  std::memcpy(pixGetData(source), picture.ScanLine(0), size_t{4} * kPixels);
  pixEndianByteSwap(source);
  PIX* bits = nullptr;
  bench::MeasurePrepared(
      state, kPixels, [&] { pixDestroy(&bits); },
      [&] {
        PIX* gray = pixConvertRGBToLuminance(source);
        bits = pixThresholdToBinary(gray, 128);
        pixDestroy(&gray);
      });
  pixDestroy(&bits);
  pixDestroy(&source);
}
#endif

#if RASTERKIT_BENCH_QT
void QtConvert(benchmark::State& state, QImage::Format format) {
  const TBitmap picture = Picture(pf24bit);
  const QImage source(picture.ScanLine(0), kWidth, kHeight,
                      static_cast<qsizetype>(picture.Stride()), QImage::Format_BGR888);
  QImage made;
  bench::MeasurePrepared(
      state, kPixels, [&] { made = QImage(); },
      [&] { made = source.convertToFormat(format, Qt::ThresholdDither | Qt::MonoOnly); });
}
#endif

void RegisterPeers() {
#if RASTERKIT_BENCH_OPENCV
  RegisterOpenCv();
#endif
#if RASTERKIT_BENCH_LEPTONICA
  benchmark::RegisterBenchmark("ColorBmpToSW 32/leptonica", LeptonicaThreshold)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
#endif
#if RASTERKIT_BENCH_QT
  benchmark::RegisterBenchmark("ColorBmpToSW 24/qt", QtConvert, QImage::Format_Mono)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("BitmapToGray 24 to 8/qt", QtConvert, QImage::Format_Grayscale8)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
#endif
}

const bool kRegistered = [] {
  struct Kind {
    const char* name;
    TPixelFormat format;
  };
  const Kind bits8{" 8", pf8bit}, bits16{" 16", pf16bit}, bits24{" 24", pf24bit},
      bits32{" 32", pf32bit};
  const auto add = [](const char* name, void (*run)(benchmark::State&, TPixelFormat),
                      std::initializer_list<Kind> kinds, const char* what = "") {
    for (const Kind& kind : kinds)
      Register(std::string(name) + kind.name + what + "/rasterkit", run, kind.format);
  };
  for (const Kind& kind : {bits8, bits24, bits32})
    Register(std::string("memcpy") + kind.name, Memcpy, kind.format);
  add("SetToTransparent", RunSetToTransparent, {bits8, bits16, bits24, bits32});
  add("SetColorAbGray", RunSetColorAbGray, {bits16, bits24, bits32});
  add("SetColorBisGray", RunSetColorBisGray, {bits24, bits32});
  add("CheckTransColForPDF", RunCheckTransColForPDF, {bits8});
  add("SetTransColor", RunSetTransColor, {bits24});
  add("ResetTransparent", RunResetTransparent, {bits32});
  add("BitmapToGray", RunBitmapToGray, {bits24}, " in place");
  add("BitmapToGray", RunBitmapToGray8, {bits16, bits24, bits32}, " to 8");
  add("ColorBmpTo1Bit", RunColorBmpTo1Bit, {bits24});
  add("ColorBmpToSW", RunColorBmpToSW, {bits8, bits24, bits32});
  RegisterPeers();
  return true;
}();

}  // namespace
}  // namespace rasterkit
