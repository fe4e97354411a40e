#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include <rasterkit/bands/stages.h>

// Steps that move pixels, on whole pictures of one thread; items = pixels of the result.
namespace {

using rasterkit::Pixels;
using rasterkit::Raster;
using rasterkit::Sides;
using rasterkit::Stage;

constexpr Sides kSides{6001, 4003};

Raster Picture(rasterkit::TPixelFormat format) {
  Raster raster(format, kSides.width, kSides.height);
  std::mt19937_64 random(1);
  for (int y = 0; y < kSides.height; ++y) {
    uint8_t* row = raster.Row(y);
    for (size_t i = 0; i < raster.Stride(); ++i) row[i] = static_cast<uint8_t>(random());
  }
  raster.ClearPadding();
  return raster;
}

void Run(benchmark::State& state, const Stage& stage, rasterkit::TPixelFormat format) {
  const Raster source = Picture(format);
  rasterkit::Changes changes;
  int64_t pixels = 0;
  for (auto _ : state) {
    // A stage takes its source over: the copy is made outside the measured time.
    state.PauseTiming();
    Pixels copy = source.Clone();
    state.ResumeTiming();
    const Pixels made = stage.Make(std::move(copy), {1, {}}, changes);
    benchmark::DoNotOptimize(&made);
    pixels += int64_t{WidthOf(made)} * HeightOf(made);
  }
  state.SetItemsProcessed(pixels);
}

void Add(const std::string& name, std::shared_ptr<const Stage> stage,
         rasterkit::TPixelFormat format) {
  benchmark::RegisterBenchmark(name.c_str(), [stage, format](benchmark::State& state) {
    Run(state, *stage, format);
  })->Unit(benchmark::kMillisecond);
}

void AddFormat(const std::string& name, rasterkit::TPixelFormat format) {
  using rasterkit::MirrorAxis;
  Add("crop/" + name, rasterkit::CropStage(kSides, 1003, 502, 4000, 3000), format);
  Add("mirror_left_right/" + name, rasterkit::MirrorStage(kSides, MirrorAxis::leftRight), format);
  Add("mirror_top_bottom/" + name, rasterkit::MirrorStage(kSides, MirrorAxis::topBottom), format);
  for (int quarters = 1; quarters <= 3; ++quarters) {
    Add("turn_" + std::to_string(90 * quarters) + "/" + name,
        rasterkit::TurnStage(kSides, quarters), format);
  }
  for (const double degrees : {2.0, 30.0, 90.3}) {
    Add("rotate_" + std::to_string(degrees).substr(0, 4) + "/" + name,
        rasterkit::RotateStage(kSides, degrees), format);
  }
  Add("resize_to_quarter/" + name, rasterkit::ResizeStage(kSides, {1500, 1000}), format);
  Add("resize_to_larger/" + name, rasterkit::ResizeStage(kSides, {7000, 5000}), format);
}

const bool kAreAdded = [] {
  AddFormat("1 bit", rasterkit::pf1bit);
  AddFormat("8 bits", rasterkit::pf8bit);
  AddFormat("24 bits", rasterkit::pf24bit);
  AddFormat("32 bits", rasterkit::pf32bit);
  return true;
}();

}  // namespace
