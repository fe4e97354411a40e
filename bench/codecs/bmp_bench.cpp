// Windows bitmap files of 36 MB, 24 bits per pixel, beside a copy of their bytes in memory and Qt.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/stream.h>

#if RASTERKIT_BENCH_QT
#include <QImage>
#endif

using namespace rasterkit;

namespace {

constexpr int kWidth = 4000, kHeight = 3000;

Raster Picture(TPixelFormat format) {
  Raster raster(format, kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) {
    uint8_t* row = raster.Row(y);
    for (size_t i = 0; i < raster.Stride(); ++i) {
      row[i] = static_cast<uint8_t>(i * 5 + static_cast<size_t>(y) * 3);
    }
  }
  return raster;
}

void Save(const Raster& raster, const std::string& name) {
  AtomicFile file(name);
  EncodeBmp(raster, file, BmpProfile::omit);
  file.Commit();
}

/// A file of the format's in the system's cache, removed at the end.
class PictureFile {
 public:
  explicit PictureFile(TPixelFormat format)
      : name_((std::filesystem::temp_directory_path() /
               ("rasterkit_bmp_bench_" + std::to_string(format) + ".bmp"))
                  .string()) {
    Save(Picture(format), name_);
  }
  ~PictureFile() { std::filesystem::remove(name_); }
  const std::string& Name() const { return name_; }
  int64_t Size() const { return static_cast<int64_t>(std::filesystem::file_size(name_)); }

 private:
  std::string name_;
};

void Count(benchmark::State& state, int64_t bytes) {
  state.SetBytesProcessed(state.iterations() * bytes);
  state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void BM_Memcpy_FileBytes(benchmark::State& state) {
  const PictureFile file(pf24bit);
  const std::vector<uint8_t> source(static_cast<size_t>(file.Size()), uint8_t{1});
  std::vector<uint8_t> target(source.size(), uint8_t{2});
  for (auto _ : state) {
    std::memcpy(target.data(), source.data(), source.size());
    benchmark::ClobberMemory();
  }
  Count(state, file.Size());
}
BENCHMARK(BM_Memcpy_FileBytes)->Unit(benchmark::kMillisecond);

void BM_DecodeBmp_Load(benchmark::State& state) {
  const PictureFile file(static_cast<TPixelFormat>(state.range(0)));
  for (auto _ : state) {
    TFileStream stream(file.Name());
    const Raster raster = DecodeBmp(stream);
    benchmark::DoNotOptimize(raster.Row(0));
  }
  Count(state, file.Size());
}
BENCHMARK(BM_DecodeBmp_Load)
    ->ArgName("format")
    ->Arg(pf24bit)
    ->Arg(pf32bit)
    ->Arg(pf8bit)
    ->Unit(benchmark::kMillisecond);

void BM_EncodeBmp_Save(benchmark::State& state) {
  const Raster raster = Picture(pf24bit);
  const PictureFile file(pf24bit);
  for (auto _ : state) Save(raster, file.Name());
  Count(state, file.Size());
}
BENCHMARK(BM_EncodeBmp_Save)->Unit(benchmark::kMillisecond);

#if RASTERKIT_BENCH_QT
void BM_Qt_Load(benchmark::State& state) {
  const PictureFile file(pf24bit);
  for (auto _ : state) {
    const QImage image(QString::fromStdString(file.Name()));
    if (image.isNull()) {
      state.SkipWithError("not loaded");
      break;
    }
    benchmark::DoNotOptimize(image.constBits());
  }
  Count(state, file.Size());
}
BENCHMARK(BM_Qt_Load)->Unit(benchmark::kMillisecond);

void BM_Qt_Save(benchmark::State& state) {
  const PictureFile file(pf24bit);
  const QImage image(QString::fromStdString(file.Name()));
  for (auto _ : state) {
    if (image.save(QString::fromStdString(file.Name()), "BMP")) continue;
    state.SkipWithError("not saved");
    break;
  }
  Count(state, file.Size());
}
BENCHMARK(BM_Qt_Save)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
