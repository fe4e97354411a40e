// Drawing on the canvas: blending, at the same size and stretched, drawing without a key color,
// into parallelograms, and halftone stretching, beside OpenCV, Qt and pixman with the same pictures
// and a memcpy of the bytes. Items are target pixels, for shrinking source pixels.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

#include "bench/support/bench_pictures.h"

#if __has_include(<opencv2/imgproc.hpp>)
#include <opencv2/imgproc.hpp>
#define RASTERKIT_BESIDE_OPENCV
#endif
#ifdef RASTERKIT_BENCH_QT
#include <QImage>
#include <QPainter>
#endif
#ifdef RASTERKIT_BENCH_PIXMAN
#include <pixman.h>
#endif

namespace rasterkit {
namespace {

constexpr int kWidth = 4000, kHeight = 3000;

void CountPixels(benchmark::State& state, int64_t pixels) {
  state.SetItemsProcessed(state.iterations() * pixels);
  // Time for one pixel, as the goals are stated.
  state.counters["ns/px"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * static_cast<double>(pixels) / 1e9,
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

const Raster& Photo() {
  static const Raster raster = bench::PhotoLike(kWidth, kHeight);
  return raster;
}

/// The photo with an alpha of every value.
Raster Overlay(int width, int height) {
  Raster raster(pf32bit, width, height);
  std::mt19937 random(7);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const uint32_t pixel = random();
      std::memcpy(raster.Row(y) + 4 * static_cast<size_t>(x), &pixel, 4);
    }
  }
  return raster;
}

void BM_BlendSameSize(benchmark::State& state) {
  TBitmap target(Photo().Clone());
  const TBitmap source(Overlay(kWidth, kHeight));
  const TBlendFunction blend{static_cast<uint8_t>(state.range(0)), true};
  for (auto _ : state)
    target.Canvas().AlphaBlend({0, 0, kWidth, kHeight}, source, {0, 0, kWidth, kHeight}, blend);
  CountPixels(state, int64_t{kWidth} * kHeight);
}

void BM_BlendStretched(benchmark::State& state) {
  TBitmap target(Photo().Clone());
  const int width = kWidth * 5 / 8, height = kHeight * 5 / 8;
  const TBitmap source(Overlay(width, height));
  const TBlendFunction blend{static_cast<uint8_t>(state.range(0)), true};
  for (auto _ : state)
    target.Canvas().AlphaBlend({0, 0, kWidth, kHeight}, source, {0, 0, width, height}, blend);
  CountPixels(state, int64_t{kWidth} * kHeight);
}

void Halftone(benchmark::State& state, TPixelFormat format, int width, int height) {
  TBitmap source(Photo().Clone());
  source.SetPixelFormat(format);
  TBitmap target;
  target.ResetPixels(pf24bit, width, height);
  target.Canvas().StretchMode = smHalftone;
  for (auto _ : state) target.Canvas().StretchDraw({0, 0, width, height}, source);
  CountPixels(state, std::max(int64_t{kWidth} * kHeight, int64_t{width} * height));
}

void BM_HalftoneShrink(benchmark::State& state) {
  Halftone(state, pf24bit, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
}
void BM_HalftoneEnlarge(benchmark::State& state) {
  Halftone(state, pf24bit, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
}

/// The photo in the format, or the overlay for 32 bits.
TBitmap Source(TPixelFormat format, int width, int height) {
  if (format == pf32bit) return TBitmap(Overlay(width, height));
  TBitmap bitmap(width == kWidth ? Photo().Clone() : bench::PhotoLike(width, height));
  bitmap.SetPixelFormat(format);
  return bitmap;
}

void BM_Memcpy(benchmark::State& state) {
  const TBitmap picture = Source(state.range(0) == 24 ? pf24bit : pf32bit, kWidth, kHeight);
  std::vector<uint8_t> copy(picture.Stride() * kHeight);
  for (auto _ : state) {
    std::memcpy(copy.data(), picture.ScanLine(0), copy.size());
    benchmark::ClobberMemory();
  }
  CountPixels(state, int64_t{kWidth} * kHeight);
}
BENCHMARK(BM_Memcpy)->ArgName("bits")->Arg(24)->Arg(32)->Unit(benchmark::kMillisecond);

/// What is drawn where `part` of the target's size is stretched to the whole.
template <class Draw>
void DrawWhole(benchmark::State& state, TPixelFormat from, TPixelFormat to, double part,
               Draw draw) {
  TBitmap target = Source(to, kWidth, kHeight);
  const TBitmap source =
      Source(from, static_cast<int>(kWidth * part), static_cast<int>(kHeight * part));
  const TRect dest{0, 0, kWidth, kHeight}, src{0, 0, source.Width(), source.Height()};
  for (auto _ : state) draw(target.Canvas(), dest, source, src);
  CountPixels(state, int64_t{kWidth} * kHeight);
}

void BlendFormats(benchmark::State& state, TPixelFormat from, TPixelFormat to, double part) {
  DrawWhole(state, from, to, part,
            [](TCanvas& canvas, const TRect& dest, const TBitmap& source, const TRect& src) {
              canvas.AlphaBlend(dest, source, src, {128, true});
            });
}
/// By the alpha of each pixel alone, as pixman does.
void BlendAlpha(benchmark::State& state, double part) {
  DrawWhole(state, pf32bit, pf32bit, part,
            [](TCanvas& canvas, const TRect& dest, const TBitmap& source, const TRect& src) {
              canvas.AlphaBlend(dest, source, src, {255, true});
            });
}
BENCHMARK_CAPTURE(BlendAlpha, over 32, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BlendAlpha, over 32 stretched, 0.625)->Unit(benchmark::kMillisecond);

BENCHMARK_CAPTURE(BlendFormats, 24 over 24, pf24bit, pf24bit, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BlendFormats, 24 over 24 stretched, pf24bit, pf24bit, 0.625)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BlendFormats, 8 over 24, pf8bit, pf24bit, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BlendFormats, 24 over 32, pf24bit, pf32bit, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BlendFormats, 32 over 32, pf32bit, pf32bit, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BlendFormats, 32 over 32 stretched, pf32bit, pf32bit, 0.625)
    ->Unit(benchmark::kMillisecond);

/// The key is a color that the photo hardly has, so nearly every pixel is drawn.
void KeyedFormats(benchmark::State& state, TPixelFormat from, TPixelFormat to, double part) {
  DrawWhole(state, from, to, part,
            [](TCanvas& canvas, const TRect& dest, const TBitmap& source, const TRect& src) {
              canvas.TransparentBlt(dest, source, src, 0xFFFFFF);
            });
}
BENCHMARK_CAPTURE(KeyedFormats, 24 over 24, pf24bit, pf24bit, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(KeyedFormats, 24 over 24 stretched, pf24bit, pf24bit, 0.625)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(KeyedFormats, 1 over 32, pf1bit, pf32bit, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(KeyedFormats, 1 over 32 stretched, pf1bit, pf32bit, 0.625)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(KeyedFormats, 8 over 24, pf8bit, pf24bit, 1)->Unit(benchmark::kMillisecond);

/// A whole mirror, a half turn and a slanted parallelogram.
constexpr std::array<TPoint, 3> kMirror{{{kWidth, 0}, {0, 0}, {kWidth, kHeight}}};
constexpr std::array<TPoint, 3> kHalfTurn{{{kWidth, kHeight}, {0, kHeight}, {kWidth, 0}}};
constexpr std::array<TPoint, 3> kSlanted{{{400, 0}, {kWidth, 300}, {0, kHeight - 300}}};

void Parallelogram(benchmark::State& state, TPixelFormat format,
                   const std::array<TPoint, 3>& corners) {
  DrawWhole(state, format, format, 1,
            [&](TCanvas& canvas, const TRect&, const TBitmap& source, const TRect& src) {
              canvas.PlgBlt(corners, source, src);
            });
}
BENCHMARK_CAPTURE(Parallelogram, mirror 24, pf24bit, kMirror)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Parallelogram, half turn 24, pf24bit, kHalfTurn)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Parallelogram, slanted 24, pf24bit, kSlanted)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Parallelogram, slanted 32, pf32bit, kSlanted)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Parallelogram, slanted 8, pf8bit, kSlanted)->Unit(benchmark::kMillisecond);

BENCHMARK(BM_BlendSameSize)->Arg(255)->Arg(128)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlendStretched)->Arg(255)->Arg(128)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HalftoneShrink)
    ->Args({1000, 750})
    ->Args({1500, 1000})
    ->Args({1003, 751})
    ->Args({3500, 2600})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HalftoneEnlarge)
    ->Args({6000, 4500})
    ->Args({8000, 6000})
    ->Args({4800, 3600})
    ->Args({6007, 4507})
    ->Unit(benchmark::kMillisecond);

#ifdef RASTERKIT_BESIDE_OPENCV
cv::Mat AsMat(Raster& raster) {
  const int type = raster.Format() == pf24bit ? CV_8UC3 : CV_8UC4;
  return cv::Mat(raster.Height(), raster.Width(), type, raster.Row(0), raster.Stride());
}

void OpenCvResize(benchmark::State& state, int interpolation) {
  cv::setNumThreads(1);
  Raster picture = Photo().Clone();
  const auto width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
  const cv::Mat source = AsMat(picture);
  cv::Mat target(height, width, CV_8UC3);
  for (auto _ : state) cv::resize(source, target, target.size(), 0, 0, interpolation);
  CountPixels(state, std::max(int64_t{kWidth} * kHeight, int64_t{width} * height));
}

void BM_OpenCvArea(benchmark::State& state) {
  OpenCvResize(state, cv::INTER_AREA);
}
void BM_OpenCvLinear(benchmark::State& state) {
  OpenCvResize(state, cv::INTER_LINEAR);
}

/// One weight for all pixels: OpenCV has no alpha.
void BM_OpenCvWeighted(benchmark::State& state) {
  cv::setNumThreads(1);
  Raster picture = Photo().Clone(), over = Photo().Clone();
  cv::Mat target = AsMat(picture);
  const cv::Mat source = AsMat(over);
  for (auto _ : state) cv::addWeighted(target, 0.5, source, 0.5, 0, target);
  CountPixels(state, int64_t{kWidth} * kHeight);
}
BENCHMARK(BM_OpenCvWeighted)->Unit(benchmark::kMillisecond);

void BM_OpenCvKeyed(benchmark::State& state) {
  cv::setNumThreads(1);
  Raster picture = Photo().Clone(), over = Photo().Clone();
  cv::Mat target = AsMat(picture), scaled, mask;
  const auto part = static_cast<double>(state.range(0)) / 1000;
  const cv::Mat source =
      AsMat(over)(cv::Rect(0, 0, static_cast<int>(kWidth * part), static_cast<int>(kHeight * part)))
          .clone();
  const cv::Scalar key(255, 255, 255);
  for (auto _ : state) {
    if (part != 1) cv::resize(source, scaled, target.size(), 0, 0, cv::INTER_NEAREST);
    const cv::Mat& drawn = part != 1 ? scaled : source;
    cv::inRange(drawn, key, key, mask);
    cv::bitwise_not(mask, mask);
    drawn.copyTo(target, mask);
  }
  CountPixels(state, int64_t{kWidth} * kHeight);
}
BENCHMARK(BM_OpenCvKeyed)
    ->ArgName("thousandths")
    ->Arg(1000)
    ->Arg(625)
    ->Unit(benchmark::kMillisecond);

void OpenCvParallelogram(benchmark::State& state, const std::array<TPoint, 3>& corners) {
  cv::setNumThreads(1);
  Raster picture = Photo().Clone(), over = Photo().Clone();
  cv::Mat target = AsMat(picture);
  const cv::Mat source = AsMat(over);
  const cv::Point2f from[3] = {{0, 0}, {kWidth, 0}, {0, kHeight}};
  cv::Point2f to[3];
  for (size_t i = 0; i < 3; ++i)
    to[i] = {static_cast<float>(corners[i].X), static_cast<float>(corners[i].Y)};
  const cv::Mat map = cv::getAffineTransform(from, to);
  for (auto _ : state)
    cv::warpAffine(source, target, map, target.size(), cv::INTER_NEAREST, cv::BORDER_TRANSPARENT);
  CountPixels(state, int64_t{kWidth} * kHeight);
}
BENCHMARK_CAPTURE(OpenCvParallelogram, mirror 24, kMirror)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OpenCvParallelogram, half turn 24, kHalfTurn)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OpenCvParallelogram, slanted 24, kSlanted)->Unit(benchmark::kMillisecond);

BENCHMARK(BM_OpenCvArea)
    ->Args({1000, 750})
    ->Args({1500, 1000})
    ->Args({1003, 751})
    ->Args({3500, 2600})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenCvLinear)
    ->Args({6000, 4500})
    ->Args({8000, 6000})
    ->Args({4800, 3600})
    ->Args({6007, 4507})
    ->Unit(benchmark::kMillisecond);
#endif

#ifdef RASTERKIT_BENCH_QT
QImage AsImage(Raster& raster, QImage::Format format) {
  return QImage(raster.Row(0), raster.Width(), raster.Height(),
                static_cast<qsizetype>(raster.Stride()), format);
}

void BM_QtSlanted(benchmark::State& state) {
  Raster photo = Photo().Clone(), over = Photo().Clone();
  QImage target = AsImage(photo, QImage::Format_BGR888).convertToFormat(QImage::Format_RGB32);
  const QImage source = AsImage(over, QImage::Format_BGR888).convertToFormat(QImage::Format_RGB32);
  const auto& [origin, right, down] = kSlanted;
  const QTransform map(static_cast<double>(right.X - origin.X) / kWidth,
                       static_cast<double>(right.Y - origin.Y) / kWidth,
                       static_cast<double>(down.X - origin.X) / kHeight,
                       static_cast<double>(down.Y - origin.Y) / kHeight, origin.X, origin.Y);
  for (auto _ : state) {
    QPainter painter(&target);
    painter.setTransform(map);
    painter.drawImage(0, 0, source);
  }
  CountPixels(state, int64_t{kWidth} * kHeight);
}
BENCHMARK(BM_QtSlanted)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Qt keeps its alpha premultiplied; the target is what it blends fastest onto: 32 bits as well as
/// 24 are asked.
void QtBlend(benchmark::State& state, QImage::Format format, double part) {
  Raster photo = Photo().Clone();
  QImage target = AsImage(photo, QImage::Format_BGR888).convertToFormat(format);
  Raster overlay = Overlay(static_cast<int>(kWidth * part), static_cast<int>(kHeight * part));
  const QImage source =
      AsImage(overlay, QImage::Format_ARGB32).convertToFormat(QImage::Format_ARGB32_Premultiplied);
  for (auto _ : state) {
    QPainter painter(&target);
    painter.setOpacity(static_cast<double>(state.range(0)) / 255);
    painter.drawImage(QRect(0, 0, kWidth, kHeight), source);
  }
  CountPixels(state, int64_t{kWidth} * kHeight);
}

void BM_QtBlendSameSizeOver24(benchmark::State& state) {
  QtBlend(state, QImage::Format_RGB888, 1);
}
void BM_QtBlendSameSizeOver32(benchmark::State& state) {
  QtBlend(state, QImage::Format_RGB32, 1);
}
void BM_QtBlendStretchedOver24(benchmark::State& state) {
  QtBlend(state, QImage::Format_RGB888, 0.625);
}
void BM_QtBlendStretchedOver32(benchmark::State& state) {
  QtBlend(state, QImage::Format_RGB32, 0.625);
}

BENCHMARK(BM_QtBlendSameSizeOver24)
    ->Arg(255)
    ->Arg(128)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_QtBlendSameSizeOver32)
    ->Arg(255)
    ->Arg(128)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_QtBlendStretchedOver24)
    ->Arg(255)
    ->Arg(128)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_QtBlendStretchedOver32)
    ->Arg(255)
    ->Arg(128)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
#endif

#ifdef RASTERKIT_BENCH_PIXMAN
struct PixmanImage {
  pixman_image_t* image;
  ~PixmanImage() { pixman_image_unref(image); }
};

PixmanImage AsPixman(Raster& raster, pixman_format_code_t format) {
  return {pixman_image_create_bits(format, raster.Width(), raster.Height(),
                                   reinterpret_cast<uint32_t*>(raster.Row(0)),
                                   static_cast<int>(raster.Stride()))};
}

void PixmanBlend(benchmark::State& state, double part, pixman_format_code_t format) {
  Raster photo = format == PIXMAN_r8g8b8 ? Photo().Clone() : Overlay(kWidth, kHeight);
  Raster overlay = Overlay(static_cast<int>(kWidth * part), static_cast<int>(kHeight * part));
  const PixmanImage target = AsPixman(photo, format);
  const PixmanImage source = AsPixman(overlay, PIXMAN_a8r8g8b8);
  if (part != 1) {
    pixman_transform_t scale;
    pixman_transform_init_scale(&scale, pixman_double_to_fixed(part), pixman_double_to_fixed(part));
    pixman_image_set_transform(source.image, &scale);
    pixman_image_set_filter(source.image, PIXMAN_FILTER_NEAREST, nullptr, 0);
  }
  for (auto _ : state)
    pixman_image_composite32(PIXMAN_OP_OVER, source.image, nullptr, target.image, 0, 0, 0, 0, 0, 0,
                             kWidth, kHeight);
  CountPixels(state, int64_t{kWidth} * kHeight);
}

BENCHMARK_CAPTURE(PixmanBlend, over 24, 1, PIXMAN_r8g8b8)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PixmanBlend, over 24 stretched, 0.625, PIXMAN_r8g8b8)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PixmanBlend, over 32, 1, PIXMAN_a8r8g8b8)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PixmanBlend, over 32 stretched, 0.625, PIXMAN_a8r8g8b8)
    ->Unit(benchmark::kMillisecond);
#endif

}  // namespace
}  // namespace rasterkit
