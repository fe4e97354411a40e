// 24-bit pictures with 256 colors of their own, beside Leptonica's median cut (without dithering).
// The counter `rms` is the root of the mean squared distance of a pixel's color. Pictures made by
// rule, and the files that RASTERKIT_BENCH_PICTURES names (separated by colons).
#include <cmath>
#include <cstdlib>
#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>
#include <leptonica/allheaders.h>

#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/files/stream.h>

#include "bench/support/bench_pictures.h"

namespace {

using namespace rasterkit;

using MakePicture = std::function<Raster()>;

struct PixDeleter {
  void operator()(PIX* pix) const { pixDestroy(&pix); }
};
using PixPointer = std::unique_ptr<PIX, PixDeleter>;

// `colorOf(x, y)` is a pointer to three bytes, blue first.
template <typename ColorOf>
double RootMeanSquare(const Raster& source, ColorOf colorOf) {
  double sum = 0;
  for (int y = 0; y < source.Height(); ++y) {
    const uint8_t* row = source.Row(y);
    for (int x = 0; x < source.Width(); ++x, row += 3) {
      const auto color = colorOf(x, y);
      for (size_t c = 0; c < 3; ++c) {
        const double difference = row[c] - color[c];
        sum += difference * difference;
      }
    }
  }
  return std::sqrt(sum / source.Width() / source.Height());
}

void Report(benchmark::State& state, const Raster& source, double rms) {
  state.SetItemsProcessed(state.iterations() * source.Width() * source.Height());
  state.counters["rms"] = rms;
}

void ByRasterkit(benchmark::State& state, const MakePicture& make) {
  const Raster source = make();
  Raster result;
  for (auto _ : state) result = ConvertRaster(source, pf8bit);
  const auto entries = result.palette.Entries();
  Report(state, source, RootMeanSquare(source, [&](int x, int y) {
           const tagPALETTEENTRY& entry = entries[result.Row(y)[x]];
           return std::array<int, 3>{entry.peBlue, entry.peGreen, entry.peRed};
         }));
}

PixPointer PixOf(const Raster& source) {
  PixPointer pix(pixCreate(source.Width(), source.Height(), 32));
  for (int y = 0; y < source.Height(); ++y) {
    const uint8_t* row = source.Row(y);
    for (int x = 0; x < source.Width(); ++x, row += 3)
      pixSetRGBPixel(pix.get(), x, y, row[2], row[1], row[0]);
  }
  return pix;
}

void ByMedianCut(benchmark::State& state, const MakePicture& make) {
  const Raster source = make();
  const PixPointer pix = PixOf(source);
  PixPointer result;
  for (auto _ : state) result.reset(pixMedianCutQuant(pix.get(), 0));
  if (!result) return state.SkipWithError("refused");
  Report(state, source, RootMeanSquare(source, [&](int x, int y) {
           uint32_t index = 0;
           int32_t red = 0, green = 0, blue = 0;
           pixGetPixel(result.get(), x, y, &index);
           if (pixGetColormap(result.get()))
             pixcmapGetColor(pixGetColormap(result.get()), static_cast<int>(index), &red, &green,
                             &blue);
           return std::array<int, 3>{blue, green, red};
         }));
}

Raster Noise() {
  Raster picture(pf24bit, 4000, 3000);
  std::mt19937 random(1);
  for (int y = 0; y < picture.Height(); ++y)
    for (size_t i = 0; i < picture.RowBytes(); ++i)
      picture.Row(y)[i] = static_cast<uint8_t>(random() >> 13);
  return picture;
}

Raster FileAs24Bit(const std::string& name) {
  TMemoryStream stream;
  stream.LoadFromFile(name);
  return ConvertRaster(DecodePicture(stream), pf24bit);
}

void Add(const std::string& name, const MakePicture& make) {
  for (auto* registered :
       {benchmark::RegisterBenchmark(("Rasterkit/" + name).c_str(), ByRasterkit, make),
        benchmark::RegisterBenchmark(("Leptonica/" + name).c_str(), ByMedianCut, make)})
    registered->Unit(benchmark::kMillisecond)->UseRealTime();
}

bool AddAll() {
  Add("photograph", [] { return bench::PhotoLike(4000, 3000); });
  Add("small_photograph", [] { return bench::PhotoLike(1000, 750); });
  Add("plan", [] { return bench::PlanLike(4000, 3000); });
  Add("noise", Noise);
  if (const char* names = std::getenv("RASTERKIT_BENCH_PICTURES")) {
    std::istringstream list(names);
    for (std::string name; std::getline(list, name, ':');)
      Add(name.substr(name.rfind('/') + 1), [name] { return FileAs24Bit(name); });
  }
  return true;
}

[[maybe_unused]] const bool added = AddAll();

}  // namespace
