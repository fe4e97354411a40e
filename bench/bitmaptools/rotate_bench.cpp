#include <QImage>
#include <QTransform>
#include <cstring>
#include <memory>
#include <random>

#include <benchmark/benchmark.h>
#include <leptonica/allheaders.h>

#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/graphics/bitmap.h>

#include <opencv2/imgproc.hpp>

// Turning a picture of 12 megapixels, items = pixels of the turned picture (the peers fill the same
// bounding box).
namespace {

using rasterkit::TBitmap;
using rasterkit::TPixelFormat;

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr double kDegreesToRadians = 3.14159265358979323846 / 180;

TBitmap Picture(TPixelFormat format) {
  TBitmap bitmap;
  bitmap.ResetPixels(format, kWidth, kHeight);
  std::mt19937 random(1);
  for (int y = 0; y < kHeight; ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    for (size_t i = 0; i < bitmap.Stride(); ++i) row[i] = static_cast<uint8_t>(random());
  }
  return bitmap;
}

cv::Mat PictureMat() {
  const TBitmap bitmap = Picture(rasterkit::pf24bit);
  cv::Mat mat(kHeight, kWidth, CV_8UC3);
  for (int y = 0; y < kHeight; ++y) std::memcpy(mat.ptr(y), bitmap.ScanLine(y), kWidth * 3);
  return mat;
}

void CountPixels(benchmark::State& state, int64_t pixels) {
  state.SetItemsProcessed(state.iterations() * pixels);
}

void Rasterkit(benchmark::State& state, TPixelFormat format, float angle, int threads) {
  const TBitmap source = Picture(format);
  int64_t pixels = 0;
  for (auto _ : state) {
    // RotateBitmap replaces its argument: the copy is made outside the measured time.
    state.PauseTiming();
    std::unique_ptr<TBitmap> bitmap = source.Clone();
    state.ResumeTiming();
    rasterkit::RotateBitmap(angle, bitmap, 0, threads, nullptr);
    pixels = int64_t{bitmap->Width()} * bitmap->Height();
    state.PauseTiming();
    bitmap.reset();
    state.ResumeTiming();
  }
  CountPixels(state, pixels);
}

void Qt(benchmark::State& state, QImage::Format format, double angle) {
  QImage source(kWidth, kHeight, format);
  std::mt19937 random(1);
  for (int y = 0; y < kHeight; ++y)
    for (qsizetype i = 0; i < source.bytesPerLine(); ++i)
      source.scanLine(y)[i] = static_cast<uchar>(random());
  int64_t pixels = 0;
  for (auto _ : state) {
    const QImage turned = source.transformed(QTransform().rotate(-angle), Qt::FastTransformation);
    pixels = int64_t{turned.width()} * turned.height();
    benchmark::DoNotOptimize(turned.constBits());
  }
  CountPixels(state, pixels);
}

void OpenCvWarp(benchmark::State& state, double angle, int threads) {
  cv::setNumThreads(threads);
  const cv::Mat source = PictureMat();
  cv::Mat matrix = cv::getRotationMatrix2D({kWidth / 2.0F, kHeight / 2.0F}, angle, 1);
  const double s = std::abs(std::sin(angle * kDegreesToRadians));
  const double c = std::abs(std::cos(angle * kDegreesToRadians));
  const cv::Size size(cvRound(kHeight * s + kWidth * c), cvRound(kWidth * s + kHeight * c));
  matrix.at<double>(0, 2) += size.width / 2.0 - kWidth / 2.0;
  matrix.at<double>(1, 2) += size.height / 2.0 - kHeight / 2.0;
  cv::Mat target;
  for (auto _ : state) {
    cv::warpAffine(source, target, matrix, size, cv::INTER_NEAREST);
    benchmark::DoNotOptimize(target.data);
  }
  CountPixels(state, int64_t{size.width} * size.height);
}

void OpenCvRotate(benchmark::State& state, int code) {
  cv::setNumThreads(1);
  const cv::Mat source = PictureMat();
  cv::Mat target;
  for (auto _ : state) {
    cv::rotate(source, target, code);
    benchmark::DoNotOptimize(target.data);
  }
  CountPixels(state, int64_t{kWidth} * kHeight);
}

struct PixDeleter {
  void operator()(PIX* pix) const { pixDestroy(&pix); }
};
using PixPointer = std::unique_ptr<PIX, PixDeleter>;

PixPointer LeptonicaPicture() {
  PixPointer pix(pixCreate(kWidth, kHeight, 32));
  std::mt19937 random(1);
  for (int i = 0; i < pixGetWpl(pix.get()) * kHeight; ++i) pixGetData(pix.get())[i] = random();
  return pix;
}

void LeptonicaRotate(benchmark::State& state, double angle) {
  const PixPointer source = LeptonicaPicture();
  int64_t pixels = 0;
  for (auto _ : state) {
    const PixPointer turned(pixRotate(source.get(), static_cast<float>(-angle * kDegreesToRadians),
                                      L_ROTATE_SAMPLING, L_BRING_IN_WHITE, kWidth, kHeight));
    pixels = int64_t{pixGetWidth(turned.get())} * pixGetHeight(turned.get());
  }
  CountPixels(state, pixels);
}

void LeptonicaQuarters(benchmark::State& state, int quarters) {
  const PixPointer source = LeptonicaPicture();
  for (auto _ : state) {
    const PixPointer turned(quarters == 2 ? pixRotate180(nullptr, source.get())
                                          : pixRotate90(source.get(), quarters == 3 ? 1 : -1));
    benchmark::DoNotOptimize(turned.get());
  }
  CountPixels(state, int64_t{kWidth} * kHeight);
}

void Memcpy(benchmark::State& state) {
  const cv::Mat source = PictureMat();
  cv::Mat target = source.clone();
  for (auto _ : state) {
    std::memcpy(target.data, source.data, size_t{kWidth} * kHeight * 3);
    benchmark::DoNotOptimize(target.data);
  }
  CountPixels(state, int64_t{kWidth} * kHeight);
}

using namespace rasterkit;

// Real time for what a caller waits, the process's time beside it: some peers use more threads than
// they are asked to.
#define TURN(function, name, ...)                \
  BENCHMARK_CAPTURE(function, name, __VA_ARGS__) \
      ->Unit(benchmark::kMillisecond)            \
      ->UseRealTime()                            \
      ->MeasureProcessCPUTime()

BENCHMARK(Memcpy)->Unit(benchmark::kMillisecond)->UseRealTime();

TURN(Rasterkit, 24bit_30deg_1thread, pf24bit, 30, 1);
TURN(Rasterkit, 24bit_30deg_2threads, pf24bit, 30, 2);
TURN(Qt, 24bit_30deg, QImage::Format_RGB888, 30);
TURN(Qt, 32bit_30deg, QImage::Format_RGB32, 30);
TURN(OpenCvWarp, 24bit_30deg_1thread, 30, 1);
TURN(OpenCvWarp, 24bit_30deg_2threads, 30, 2);
TURN(LeptonicaRotate, 32bit_30deg, 30);

TURN(Rasterkit, 24bit_5deg, pf24bit, 5, 1);
TURN(Qt, 24bit_5deg, QImage::Format_RGB888, 5);
TURN(OpenCvWarp, 24bit_5deg, 5, 1);
TURN(LeptonicaRotate, 32bit_5deg, 5);

TURN(Rasterkit, 24bit_80deg, pf24bit, 80, 1);
TURN(Rasterkit, 32bit_30deg, pf32bit, 30, 1);
TURN(Rasterkit, 8bit_30deg, pf8bit, 30, 1);
TURN(Rasterkit, 4bit_30deg, pf4bit, 30, 1);
TURN(Rasterkit, 1bit_30deg, pf1bit, 30, 1);
TURN(Qt, 8bit_30deg, QImage::Format_Grayscale8, 30);

TURN(Rasterkit, 24bit_90deg, pf24bit, 90, 1);
TURN(Qt, 24bit_90deg, QImage::Format_RGB888, 90);
TURN(OpenCvRotate, 24bit_90deg, cv::ROTATE_90_COUNTERCLOCKWISE);
TURN(LeptonicaQuarters, 32bit_90deg, 1);
TURN(Rasterkit, 24bit_180deg, pf24bit, 180, 1);
TURN(Qt, 24bit_180deg, QImage::Format_RGB888, 180);
TURN(OpenCvRotate, 24bit_180deg, cv::ROTATE_180);
TURN(LeptonicaQuarters, 32bit_180deg, 2);
TURN(Rasterkit, 24bit_270deg, pf24bit, 270, 1);
TURN(OpenCvRotate, 24bit_270deg, cv::ROTATE_90_CLOCKWISE);
TURN(LeptonicaQuarters, 32bit_270deg, 3);

}  // namespace
