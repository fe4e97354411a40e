#include <cstring>
#include <memory>
#include <random>

#include <benchmark/benchmark.h>
#include <leptonica/allheaders.h>

#include <rasterkit/bitmaptools/rotation/orient.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/graphics/bitmap.h>

// Turning a black-and-white plan (A0 at 300 dots per inch), items = pixels of the plan.
namespace {

using rasterkit::TBitmap;

constexpr int kWidth = 14043;
constexpr int kHeight = 9933;
constexpr double kDegreesToRadians = 3.14159265358979323846 / 180;

TBitmap Plan() {
  TBitmap bitmap;
  bitmap.ResetPixels(rasterkit::pf1bit, kWidth, kHeight);
  std::mt19937 random(1);
  for (int y = 0; y < kHeight; ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    for (int i = 0; i < kWidth / 8; ++i) row[i] = static_cast<uint8_t>(random());
  }
  return bitmap;
}

struct PixDeleter {
  void operator()(PIX* pix) const { pixDestroy(&pix); }
};
using PixPointer = std::unique_ptr<PIX, PixDeleter>;

PixPointer LeptonicaPlan() {
  PixPointer pix(pixCreate(kWidth, kHeight, 1));
  std::mt19937 random(1);
  for (int i = 0; i < pixGetWpl(pix.get()) * kHeight; ++i) pixGetData(pix.get())[i] = random();
  pixSetPadBits(pix.get(), 0);
  return pix;
}

void CountPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * int64_t{kWidth} * kHeight);
}

// Both replace their argument: the copy is made outside the measured time.
template <typename Turn>
void MeasureTurn(benchmark::State& state, Turn turn) {
  const TBitmap source = Plan();
  for (auto _ : state) {
    state.PauseTiming();
    std::unique_ptr<TBitmap> bitmap = source.Clone();
    state.ResumeTiming();
    turn(bitmap);
    state.PauseTiming();
    bitmap.reset();
    state.ResumeTiming();
  }
  CountPixels(state);
}

void RasterkitAngle(benchmark::State& state, float degrees, int threads) {
  MeasureTurn(state, [&](std::unique_ptr<TBitmap>& bitmap) {
    rasterkit::RotateBitmap(degrees, bitmap, 0xFFFFFF, threads, nullptr);
  });
}

void RasterkitQuarters(benchmark::State& state, int quarters) {
  MeasureTurn(
      state, [&](std::unique_ptr<TBitmap>& bitmap) { rasterkit::TurnQuarters(*bitmap, quarters); });
}

void LeptonicaAngle(benchmark::State& state, double degrees, int method) {
  const PixPointer source = LeptonicaPlan();
  for (auto _ : state) {
    const PixPointer turned(pixRotate(source.get(),
                                      static_cast<float>(-degrees * kDegreesToRadians), method,
                                      L_BRING_IN_WHITE, kWidth, kHeight));
    benchmark::DoNotOptimize(turned.get());
  }
  CountPixels(state);
}

void LeptonicaQuarters(benchmark::State& state, int quarters) {
  const PixPointer source = LeptonicaPlan();
  for (auto _ : state) {
    const PixPointer turned(pixRotateOrth(source.get(), 4 - quarters));
    benchmark::DoNotOptimize(turned.get());
  }
  CountPixels(state);
}

void Memcpy(benchmark::State& state) {
  const TBitmap source = Plan();
  const std::unique_ptr<TBitmap> target = source.Clone();
  for (auto _ : state) {
    std::memcpy(target->ScanLine(0), source.ScanLine(0), source.Stride() * kHeight);
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}

#define TURN(function, name, ...)                \
  BENCHMARK_CAPTURE(function, name, __VA_ARGS__) \
      ->Unit(benchmark::kMillisecond)            \
      ->UseRealTime()                            \
      ->MeasureProcessCPUTime()

BENCHMARK(Memcpy)->Unit(benchmark::kMillisecond)->UseRealTime();

TURN(RasterkitAngle, 0.1deg, 0.1f, 1);
TURN(RasterkitAngle, 2deg, 2.0f, 1);
TURN(RasterkitAngle, 2deg_2threads, 2.0f, 2);
TURN(LeptonicaAngle, 2deg_shear, 2, L_ROTATE_SHEAR);
TURN(LeptonicaAngle, 2deg_sampling, 2, L_ROTATE_SAMPLING);
TURN(RasterkitAngle, 5deg, 5.0f, 1);
TURN(LeptonicaAngle, 5deg_shear, 5, L_ROTATE_SHEAR);
TURN(RasterkitAngle, 10deg, 10.0f, 1);
TURN(RasterkitAngle, 15deg, 15.0f, 1);
TURN(RasterkitAngle, 20deg, 20.0f, 1);
TURN(RasterkitAngle, 182deg, 182.0f, 1);

TURN(RasterkitQuarters, 90deg, 1);
TURN(LeptonicaQuarters, 90deg, 1);
TURN(RasterkitQuarters, 180deg, 2);
TURN(LeptonicaQuarters, 180deg, 2);
TURN(RasterkitQuarters, 270deg, 3);
TURN(LeptonicaQuarters, 270deg, 3);

}  // namespace
