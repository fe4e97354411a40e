// Gray values of a 36 MB picture, row by row, beside a memcpy of its bytes and OpenCV's conversion
// (whose weights are the usual 0.299, 0.587, 0.114 in fixed point with rounding: the same work,
// other numbers).
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include <rasterkit/kernels/gray/gray.h>

#if __has_include(<opencv2/imgproc.hpp>)
#include <opencv2/imgproc.hpp>
#define RASTERKIT_BESIDE_OPENCV
#endif

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr size_t kPixels = size_t{kWidth} * kHeight;

enum class Content { noise, paper, doubtful };

/// A picture of random colors, of neutral grays, or of one color whose exact gray value is whole.
std::vector<uint8_t> MakePicture(Content content, int bytesPerPixel) {
  std::vector<uint8_t> picture(kPixels * bytesPerPixel);
  std::mt19937 random(36);
  for (size_t i = 0; i < kPixels; ++i) {
    const uint32_t bits = random();
    uint8_t* pixel = &picture[i * bytesPerPixel];
    const auto level = static_cast<uint8_t>(bits);
    switch (content) {
      case Content::noise:
        std::memcpy(pixel, &bits, 3);
        break;
      case Content::paper:
        std::memset(pixel, level, 3);
        break;
      case Content::doubtful:
        pixel[0] = 29, pixel[1] = 35, pixel[2] = 7;
        break;
    }
  }
  return picture;
}

void BM_MemcpyOfThePicture(benchmark::State& state) {
  const auto picture = MakePicture(Content::noise, 3);
  std::vector<uint8_t> copy(picture.size());
  for (auto _ : state) {
    std::memcpy(copy.data(), picture.data(), picture.size());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(picture.size()));
}

template <int kBytes>
void BM_GrayRows(benchmark::State& state) {
  const auto picture = MakePicture(static_cast<Content>(state.range(0)), kBytes);
  std::vector<uint8_t> gray(kPixels);
  for (auto _ : state) {
    for (size_t y = 0; y < kHeight; ++y) {
      const uint8_t* row = &picture[y * kWidth * kBytes];
      if constexpr (kBytes == 3) {
        rasterkit::kernels::GrayOfRow24(row, kWidth, &gray[y * kWidth]);
      } else {
        rasterkit::kernels::GrayOfRow32(row, kWidth, &gray[y * kWidth]);
      }
    }
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(picture.size()));
}

#ifdef RASTERKIT_BESIDE_OPENCV
void BM_OpenCvGray(benchmark::State& state) {
  cv::setNumThreads(1);
  auto picture = MakePicture(static_cast<Content>(state.range(0)), 3);
  const cv::Mat source(kHeight, kWidth, CV_8UC3, picture.data());
  cv::Mat gray(kHeight, kWidth, CV_8UC1);
  for (auto _ : state) {
    for (int y = 0; y < kHeight; ++y) {
      cv::Mat row = gray.row(y);
      cv::cvtColor(source.row(y), row, cv::COLOR_BGR2GRAY);
    }
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(picture.size()));
}

BENCHMARK(BM_OpenCvGray)->Arg(static_cast<int64_t>(Content::noise))->Unit(benchmark::kMicrosecond);
#endif

constexpr auto kNoise = static_cast<int64_t>(Content::noise);
constexpr auto kPaper = static_cast<int64_t>(Content::paper);
constexpr auto kDoubtful = static_cast<int64_t>(Content::doubtful);

BENCHMARK(BM_MemcpyOfThePicture)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_GrayRows<3>)->Arg(kNoise)->Arg(kPaper)->Arg(kDoubtful)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_GrayRows<4>)->Arg(kNoise)->Unit(benchmark::kMicrosecond);

}  // namespace
