// Saving and loading 12 megapixels of PNG: time and file size of each level, for a picture like a
// photograph and one like a plan, in true color and with a palette; by the exported routines and by
// those of pictures. libpng alone and, where it is installed, Qt's codec are the peers.

#include <benchmark/benchmark.h>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/png/rows/png_rows.h>
#include <rasterkit/raster/convert.h>

#include "bench/support/bench_pictures.h"

#ifdef RASTERKIT_BENCH_QT
#include <QBuffer>
#include <QImage>
#endif

namespace {

using namespace rasterkit;

constexpr int kWidth = 4000, kHeight = 3000;

const Raster& Photo() {
  static const Raster raster = bench::PhotoLike(kWidth, kHeight);
  return raster;
}

const Raster& Plan() {
  static const Raster raster = bench::PlanLike(kWidth, kHeight);
  return raster;
}

const Raster& IndexedPlan() {
  static const Raster raster = ConvertRaster(Plan(), pf8bit);
  return raster;
}

void Report(benchmark::State& state, size_t fileBytes) {
  state.counters["per_pixel"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kWidth * kHeight,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["file_MB"] = static_cast<double>(fileBytes) / 1e6;
}

void Save(benchmark::State& state, const Raster& (*picture)()) {
  const Raster& raster = picture();
  size_t fileBytes = 0;
  for (auto _ : state) {
    TMemoryStream stream;
    EncodePng(raster, stream, static_cast<int>(state.range(0)));
    fileBytes = stream.Size();
  }
  Report(state, fileBytes);
}

void Load(benchmark::State& state, const Raster& (*picture)()) {
  TMemoryStream stream;
  EncodePng(picture(), stream);
  for (auto _ : state) benchmark::DoNotOptimize(DecodePng(stream.Bytes()).Row(0));
  Report(state, stream.Size());
}

BENCHMARK_CAPTURE(Save, photo, Photo)->DenseRange(-1, 4)->Arg(6)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Save, plan, Plan)->DenseRange(-1, 4)->Arg(6)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Save, indexed_plan, IndexedPlan)
    ->DenseRange(-1, 4)
    ->Arg(6)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, photo, Photo)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, plan, Plan)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, indexed_plan, IndexedPlan)->Unit(benchmark::kMillisecond);

/// The encoder of pictures. Level -1 is the usual one.
void SavePicture(benchmark::State& state, const Raster& (*picture)()) {
  const Pixels pixels(picture().Clone());
  PictureWriting writing;
  if (state.range(0) >= 0) writing.pngLevel = static_cast<int>(state.range(0));
  size_t fileBytes = 0;
  for (auto _ : state) {
    TMemoryStream stream;
    WritePng(pixels, writing, stream);
    fileBytes = stream.Size();
  }
  Report(state, fileBytes);
}

/// The decoder of pictures in one call (0), or by libpng alone (1).
void LoadPicture(benchmark::State& state, const Raster& (*picture)()) {
  TMemoryStream file;
  WritePng(Pixels(picture().Clone()), {}, file);
  const auto way = state.range(0) == 0 ? detail::PngWay::automatic : detail::PngWay::library;
  for (auto _ : state) {
    TSpanStream stream(file.Bytes());
    detail::PngRows rows(stream, {.kind = {}, .isWhole = true, .way = way});
    const Pixels pixels = rows.ReadWhole();
    benchmark::DoNotOptimize(std::get<Raster>(pixels).Row(0));
  }
  Report(state, file.Size());
}

BENCHMARK_CAPTURE(SavePicture, photo, Photo)
    ->DenseRange(-1, 9)
    ->Arg(12)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SavePicture, plan, Plan)
    ->DenseRange(-1, 9)
    ->Arg(12)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SavePicture, indexed_plan, IndexedPlan)
    ->DenseRange(-1, 9)
    ->Arg(12)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadPicture, photo, Photo)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadPicture, plan, Plan)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadPicture, indexed_plan, IndexedPlan)
    ->DenseRange(0, 1)
    ->Unit(benchmark::kMillisecond);

#ifdef RASTERKIT_BENCH_QT
QImage QtPhoto() {
  return QImage(Photo().Row(0), kWidth, kHeight, static_cast<qsizetype>(Photo().Stride()),
                QImage::Format_BGR888);
}

void SaveQt(benchmark::State& state) {
  const QImage image = QtPhoto();
  qint64 fileBytes = 0;
  for (auto _ : state) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    fileBytes = buffer.size();
  }
  Report(state, static_cast<size_t>(fileBytes));
}

void LoadQt(benchmark::State& state) {
  TMemoryStream stream;
  EncodePng(Photo(), stream);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        QImage::fromData(stream.Bytes().data(), static_cast<int>(stream.Size()), "PNG").bits());
  }
  Report(state, stream.Size());
}

BENCHMARK(SaveQt)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadQt)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
