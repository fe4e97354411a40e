#include <cstring>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include <rasterkit/bands/stages.h>

// Changes of color, band after band of 64 rows of 16000 pixels, which the cache holds in part;
// items = pixels. The time of a copy of the source's bytes stands beside them.
namespace {

using namespace rasterkit;

constexpr int kWidth = 16000, kRows = 64, kBands = 16;

Pixels Source(TPixelFormat format, int rows = kRows) {
  Raster raster(format, kWidth, rows);
  if (format == pf8bit) raster.palette = GrayPalette(256);
  std::mt19937 random(1);
  for (int y = 0; y < rows; ++y) {
    for (size_t i = 0; i < raster.Stride(); ++i) raster.Row(y)[i] = static_cast<uint8_t>(random());
  }
  return raster;
}

void CountPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kBands * kRows * kWidth);
}

void Changed(benchmark::State& state, const ColorChange& change, TPixelFormat format) {
  const auto stage = ChangeStage({kWidth, kRows * kBands}, change);
  const Pixels pixels = Source(format);
  const auto work = stage->Start(pixels, {});
  while (work->Looks().count > 0) {
    for (int band = 0; band < kBands; ++band) {
      work->Look({std::get<Raster>(pixels).Clone(), 0, band * kRows}, {1, {}});
    }
    work->Decide();
  }
  // With a row above and below for those that need it.
  Band source{Source(format, kRows + 2)};
  Band target{NewPixels(work->Like(), kWidth, kRows)};
  for (auto _ : state) {
    for (int band = 0; band < kBands; ++band) {
      target.top = band * kRows;
      source.top = target.top - 1;
      work->Make(source, target, {target.top, kRows});
    }
  }
  CountPixels(state);
}

void Copied(benchmark::State& state, TPixelFormat format) {
  const Pixels source = Source(format);
  Pixels target = NewPixels(source, kWidth, kRows);
  const size_t bytes = std::get<Raster>(source).Stride() * kRows;
  for (auto _ : state) {
    for (int band = 0; band < kBands; ++band) {
      std::memcpy(std::get<Raster>(target).Row(0), std::get<Raster>(source).Row(0), bytes);
      benchmark::ClobberMemory();
    }
  }
  CountPixels(state);
}

void Register(const std::string& name, const ColorChange& change) {
  for (const TPixelFormat format : {pf8bit, pf24bit, pf32bit}) {
    benchmark::RegisterBenchmark(
        (name + " of " + std::to_string(StoredBitsPerPixel(format))).c_str(),
        [change, format](benchmark::State& state) { Changed(state, change, format); });
  }
}

const bool kRegistered = [] {
  for (const TPixelFormat format : {pf8bit, pf24bit, pf32bit}) {
    benchmark::RegisterBenchmark(("copy of " + std::to_string(StoredBitsPerPixel(format))).c_str(),
                                 [format](benchmark::State& state) { Copied(state, format); });
  }
  AdjustColors brightness, shift, sharper;
  brightness.brightness = 20;
  shift.red = 15;
  sharper.sharpen = 40;
  Register("gray", MakeGray{});
  Register("gray in true color", MakeGray{true});
  Register("black and white", MakeMono{});
  Register("whiten", WhitenLight{200});
  Register("recolor", RecolorByGray{100, true, 0x102030, {}});
  Register("brightness", brightness);
  Register("shift", shift);
  Register("sharpen", sharper);
  Register("8 bits", SetBits{8});
  Register("24 bits", SetBits{24});
  Register("32 bits", SetBits{32});
  return true;
}();

}  // namespace
