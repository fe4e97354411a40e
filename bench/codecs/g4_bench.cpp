// Strips of ITU-T T.6 in memory, on one thread: a plan of sheet A0 at 300 and at 400 dots per inch,
// a plan of many crossing lines, noise, and the G4 files of the corpus (environment variable
// RASTERKIT_CORPUS). The peer, libtiff, takes turns with the coder: processor time, the least of
// all rounds.

#include <cstdlib>
#include <ctime>
#include <filesystem>

#include <benchmark/benchmark.h>

#include <rasterkit/codecs/g4/g4_decoder.h>
#include <rasterkit/codecs/g4/g4_encoder.h>
#include <rasterkit/raster/convert.h>

#include "bench/support/bench_pictures.h"
#include "bench/support/bit_plans.h"
#include "tests/codecs/g4/g4_peer.h"

namespace {

using namespace rasterkit;

constexpr int kRounds = 9;

struct Plan {
  int width = 0, height = 0;
  size_t rowBytes = 0;
  std::vector<uint8_t> rows, strip;

  explicit Plan(const Raster& raster)
      : width(raster.Width()), height(raster.Height()), rowBytes(raster.RowBytes()) {
    rows.reserve(rowBytes * static_cast<size_t>(height));
    for (int y = 0; y < height; y++) {
      rows.insert(rows.end(), raster.Row(y), raster.Row(y) + rowBytes);
    }
    strip = peer::EncodeByLibtiff(rows, width, false);
  }
};

double ProcessorTime() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <class Work>
double Taken(Work work) {
  const double start = ProcessorTime();
  work();
  benchmark::ClobberMemory();
  return ProcessorTime() - start;
}

template <class Ours, class Peer>
void Compare(benchmark::State& state, const Plan& plan, Ours ours, Peer peer) {
  double least = 1e9, leastOfPeer = 1e9;
  for (auto _ : state) {
    least = std::min(least, Taken(ours));
    leastOfPeer = std::min(leastOfPeer, Taken(peer));
  }
  const double nanoseconds = 1e9 / (double{1} * plan.width * plan.height);
  state.counters["ns_per_pixel"] = least * nanoseconds;
  state.counters["libtiff"] = leastOfPeer * nanoseconds;
  state.counters["ratio"] = least / leastOfPeer;
  state.counters["strip_MB"] = 1e-6 * static_cast<double>(plan.strip.size());
}

void Read(benchmark::State& state, const Plan& plan) {
  peer::LibtiffDecoder libtiff(plan.width, static_cast<uint32_t>(plan.height), false);
  std::vector<uint8_t> rows(plan.rows.size()), rowsOfPeer(plan.rows.size());
  Compare(
      state, plan,
      [&] {
        detail::G4Decoder decoder(plan.strip, plan.width, {});
        decoder.Decode(rows.data(), plan.rowBytes, static_cast<size_t>(plan.height));
      },
      [&] { libtiff.DecodeTo(plan.strip, rowsOfPeer); });
  if (rows != plan.rows || rowsOfPeer != plan.rows) state.SkipWithError("rows differ");
}

void Write(benchmark::State& state, const Plan& plan) {
  std::vector<uint8_t> strip;
  Compare(
      state, plan,
      [&] {
        detail::G4Encoder encoder(plan.width, {});
        encoder.Encode(plan.rows.data(), plan.rowBytes, static_cast<size_t>(plan.height));
        strip = encoder.EndStrip();
      },
      [&] { benchmark::DoNotOptimize(peer::EncodeByLibtiff(plan.rows, plan.width, false)); });
  if (strip != plan.strip) state.SkipWithError("bytes differ");
}

/// `make` is called once.
void Register(const std::string& name, std::function<Plan()> make) {
  auto plan = std::make_shared<std::unique_ptr<Plan>>();
  const auto made = [plan, make]() -> const Plan& {
    if (!*plan) *plan = std::make_unique<Plan>(make());
    return **plan;
  };
  for (const bool isRead : {true, false}) {
    benchmark::RegisterBenchmark(
        ((isRead ? "Read/" : "Write/") + name).c_str(),
        [made, isRead](benchmark::State& state) { (isRead ? Read : Write)(state, made()); })
        ->Iterations(kRounds)
        ->Unit(benchmark::kMillisecond);
  }
}

void RegisterCorpus() {
  const char* corpus = std::getenv("RASTERKIT_CORPUS");
  if (corpus == nullptr) return;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(corpus) + "/tiff")) {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    const peer::TiffBytes::Handle tiff(TIFFOpen(entry.path().c_str(), "r"));
    uint16_t compression = 0;
    uint32_t width = 0, height = 0;
    if (!tiff || TIFFIsTiled(tiff.get()) != 0) continue;
    TIFFGetField(tiff.get(), TIFFTAG_COMPRESSION, &compression);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
    if (compression != COMPRESSION_CCITTFAX4 || uint64_t{width} * height < 1000000) continue;
    Raster raster(pf1bit, static_cast<int>(width), static_cast<int>(height));
    for (uint32_t y = 0; y < height; y++) {
      TIFFReadScanline(tiff.get(), raster.Row(static_cast<int>(y)), y);
    }
    auto shared = std::make_shared<Raster>(std::move(raster));
    Register(entry.path().filename(), [shared] { return Plan(*shared); });
  }
}

const bool kAreRegistered = [] {
  Register("plan_14043x9933", [] { return Plan(bench::BitPlan(14043, 9933)); });
  Register("plan_18724x13243", [] { return Plan(bench::BitPlan(18724, 13243)); });
  Register("crossing_lines_14043x9933",
           [] { return Plan(ConvertRaster(bench::PlanLike(14043, 9933), pf1bit)); });
  Register("noise_2000x2000", [] { return Plan(bench::BitNoise(2000, 2000)); });
  RegisterCorpus();
  return true;
}();

}  // namespace
