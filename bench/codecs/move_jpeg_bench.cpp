// A quarter turn of 12 megapixels of JPEG without recompression, beside the program that comes with
// the library, in processor time. The program reads and writes files; its start counts. It has no
// way to make a thumbnail.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/kernels/turn/turn_blocks.h>

#include "bench/support/bench_pictures.h"

namespace {

using namespace rasterkit;

constexpr int kWidth = 4000, kHeight = 3000;
constexpr const char* kPeer = "/usr/bin/jpegtran";

/// A photograph of 4:2:0 with the thumbnail of a camera.
const std::vector<uint8_t>& File(bool progressive) {
  static const auto make = [](bool isProgressive) {
    PictureWriting writing;
    JpegForm form;
    form.progressive = isProgressive;
    writing.form = form;
    writing.quality = 90;
    writing.chromaX = writing.chromaY = 2;
    writing.metadata.hasJfif = true;
    TMemoryStream stream;
    WriteJpeg(bench::PhotoLike(kWidth, kHeight), writing, stream);
    return stream.TakeBytes();
  };
  static const std::vector<uint8_t> files[] = {make(false), make(true)};
  return files[progressive ? 1 : 0];
}

/// An EXIF block with a thumbnail that is replaced.
std::vector<uint8_t> ExifWithThumbnail() {
  const std::vector<uint8_t> jpeg = EncodeJpeg(bench::PhotoLike(160, 120), 50);
  std::vector<uint8_t> block = {'I', 'I', 42, 0, 8, 0, 0, 0, 0, 0, 14, 0, 0, 0, 3, 0};
  const auto number = [&](size_t value, int bytes) {
    for (int i = 0; i < bytes; i++) block.push_back(static_cast<uint8_t>(value >> 8 * i));
  };
  const auto entry = [&](size_t tag, size_t type, size_t value) {
    number(tag, 2);
    number(type, 2);
    number(1, 4);
    number(value, 4);
  };
  constexpr size_t kThumbnailAt = 56, kShort = 3, kLong = 4;
  entry(259, kShort, 6);
  entry(513, kLong, kThumbnailAt);
  entry(514, kLong, jpeg.size());
  number(0, 4);
  block.insert(block.end(), jpeg.begin(), jpeg.end());
  return block;
}

void Turn(benchmark::State& state, bool progressive, bool makesThumbnail) {
  const std::vector<uint8_t>& file = File(progressive);
  size_t bytes = 0;
  for (auto _ : state) {
    const PictureHeader header = ReadJpegHeader(file);
    PictureWriting writing;
    writing.metadata = header.metadata;
    if (makesThumbnail) writing.metadata.exif = ExifWithThumbnail();
    writing.makesThumbnail = makesThumbnail;
    const auto& form = std::get<JpegForm>(header.form);
    writing.move =
        MovableJpegPart(form, kWidth, kHeight, {0, 0, kWidth, kHeight, true, true, false});
    TMemoryStream stream;
    CopyJpeg(file, writing, stream);
    bytes = stream.Bytes().size();
  }
  state.counters["source_bytes"] = static_cast<double>(file.size());
  state.counters["bytes"] = static_cast<double>(bytes);
}

double ChildSeconds() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void Peer(benchmark::State& state, bool progressive) {
  if (!std::filesystem::exists(kPeer)) return state.SkipWithError("jpegtran is not installed");
  const auto folder = std::filesystem::temp_directory_path();
  const std::string name = (folder / ("rasterkit-bench-" + std::to_string(getpid()))).string();
  const std::string in = name + "-in.jpg", out = name + "-out.jpg";
  const std::vector<uint8_t>& file = File(progressive);
  std::ofstream(in, std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  const std::string command = std::string(kPeer) + " -rotate 90 -trim -copy all " +
                              (progressive ? "-progressive" : "-optimize") + " -outfile " + out +
                              " " + in;
  for (auto _ : state) {
    const double before = ChildSeconds();
    if (std::system(command.c_str()) != 0) state.SkipWithError("jpegtran failed");
    state.SetIterationTime(ChildSeconds() - before);
  }
  std::error_code ignored;
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(out, ignored));
  std::filesystem::remove(in, ignored);
  std::filesystem::remove(out, ignored);
}

/// The block turn alone, beside a plain loop as the peer has it.
constexpr size_t kBlocks = 500 * 375;

void TurnBlocks(benchmark::State& state) {
  const std::vector<int16_t> source(kBlocks * kernels::kBlockCoefficients, 3);
  std::vector<int16_t> target(source.size());
  std::vector<const int16_t*> places;
  for (size_t i = 0; i < kBlocks; i++) {
    places.push_back(source.data() + i * kernels::kBlockCoefficients);
  }
  for (auto _ : state) {
    kernels::TurnBlocks(places.data(), kBlocks, {true, true, false}, target.data());
    benchmark::DoNotOptimize(target.data());
  }
}

void PlainTurnBlocks(benchmark::State& state) {
  const std::vector<int16_t> source(kBlocks * kernels::kBlockCoefficients, 3);
  std::vector<int16_t> target(source.size());
  for (auto _ : state) {
    const int16_t* from = source.data();
    int16_t* to = target.data();
    for (size_t block = 0; block < kBlocks; block++, from += 64, to += 64) {
      for (size_t x = 0; x < 8; x += 2) {
        for (size_t y = 0; y < 8; y++) to[y * 8 + x] = from[x * 8 + y];
        for (size_t y = 0; y < 8; y++) {
          to[y * 8 + x + 1] = static_cast<int16_t>(-from[(x + 1) * 8 + y]);
        }
      }
      benchmark::DoNotOptimize(to);
    }
  }
}

BENCHMARK_CAPTURE(Turn, baseline, false, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Turn, baseline_with_thumbnail, false, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Peer, baseline, false)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK_CAPTURE(Turn, progressive, true, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Turn, progressive_with_thumbnail, true, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Peer, progressive, true)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(TurnBlocks)->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainTurnBlocks)->Unit(benchmark::kMicrosecond);

}  // namespace
