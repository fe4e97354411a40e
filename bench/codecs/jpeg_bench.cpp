// Loading and saving 12 megapixels of JPEG beside a bare loop over the same codec, on the same
// bytes.

#include <cstdio>
#include <memory>

#include <benchmark/benchmark.h>
#include <jpeglib.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_row_reader.h>

#include "bench/support/bench_pictures.h"

namespace {

using namespace rasterkit;

constexpr int kWidth = 4000, kHeight = 3000;

const std::vector<uint8_t>& File() {
  static const std::vector<uint8_t> file = EncodeJpeg(bench::PhotoLike(kWidth, kHeight), 90);
  return file;
}

void PerPixel(benchmark::State& state) {
  state.counters["per_pixel"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kWidth * kHeight,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["file_bytes"] = static_cast<double>(File().size());
}

/// What a program writes that asks the library for B G R rows and nothing else. `kept`: into memory
/// that was used before; else into a fresh block each time.
void BareLoad(benchmark::State& state, bool kept) {
  const std::vector<uint8_t>& file = File();
  const size_t stride = StrideBytes(kWidth, 24);
  std::unique_ptr<uint8_t[]> rows(new uint8_t[stride * kHeight]);
  for (auto _ : state) {
    if (!kept) rows.reset(new uint8_t[stride * kHeight]);
    jpeg_decompress_struct codec{};
    jpeg_error_mgr errors{};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&codec, TRUE);
    codec.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&codec);
    while (codec.output_scanline < codec.output_height) {
      JSAMPROW row[] = {rows.get() + codec.output_scanline * stride};
      jpeg_read_scanlines(&codec, row, 1);
    }
    jpeg_finish_decompress(&codec);
    jpeg_destroy_decompress(&codec);
    benchmark::DoNotOptimize(rows.get());
  }
  PerPixel(state);
}

void Load(benchmark::State& state) {
  const std::vector<uint8_t>& file = File();
  for (auto _ : state) benchmark::DoNotOptimize(DecodeJpeg(file).Row(0));
  PerPixel(state);
}

/// All rows in bands of 64, at full size or smaller.
void Rows(benchmark::State& state) {
  const std::vector<uint8_t>& file = File();
  constexpr int kBand = 64;
  for (auto _ : state) {
    TSpanStream stream(file);
    const auto reader = OpenSmallerJpegRows(stream, static_cast<int>(state.range(0)));
    Pixels band = NewPixels(reader->Like(), reader->Width(), kBand);
    for (int top = 0; top + kBand <= reader->Height(); top += kBand) reader->Read(0, top, band);
    benchmark::DoNotOptimize(std::get<Raster>(band).Row(0));
  }
  PerPixel(state);
}

void Save(benchmark::State& state) {
  const Raster raster = bench::PhotoLike(kWidth, kHeight);
  for (auto _ : state) benchmark::DoNotOptimize(EncodeJpeg(raster, 90).data());
  PerPixel(state);
}

BENCHMARK_CAPTURE(BareLoad, into_kept_memory, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BareLoad, into_fresh_memory, false)->Unit(benchmark::kMillisecond);
BENCHMARK(Load)->Unit(benchmark::kMillisecond);
BENCHMARK(Rows)->Arg(1)->Arg(2)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK(Save)->Unit(benchmark::kMillisecond);

}  // namespace
