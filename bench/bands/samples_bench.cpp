#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include <rasterkit/bands/stages.h>

#if RASTERKIT_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

// Steps of pictures of 16-bit samples, three bands together, 12 megapixels; items = source pixels.
namespace {

using rasterkit::Pixels;
using rasterkit::Samples;
using rasterkit::Sides;
using rasterkit::Stage;

constexpr Sides kSides{4000, 3000};
constexpr Sides kSmaller{1333, 1000};
constexpr Sides kLarger{5000, 3750};

Samples Picture() {
  rasterkit::PixelLayout layout;
  layout.type = rasterkit::NumberType::uint16;
  layout.bits = 16;
  Samples samples(layout, kSides.width, kSides.height);
  std::mt19937 random(1);
  for (int y = 0; y < kSides.height; ++y) {
    for (size_t i = 0; i < samples.Stride(); ++i) {
      samples.Row(y)[i] = static_cast<uint8_t>(random());
    }
  }
  return samples;
}

void CountPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kSides.width * kSides.height);
}

void Rasterkit(benchmark::State& state, const Stage& stage, int threads) {
  const Samples source = Picture();
  rasterkit::Changes changes;
  for (auto _ : state) {
    // A stage takes its source over: the copy is made outside the measured time.
    state.PauseTiming();
    Pixels copy = source.Clone();
    state.ResumeTiming();
    const Pixels made = stage.Make(std::move(copy), {threads, {}}, changes);
    benchmark::DoNotOptimize(&made);
  }
  CountPixels(state);
}

#if RASTERKIT_BENCH_OPENCV
cv::Mat PictureMat() {
  const Samples samples = Picture();
  cv::Mat mat(kSides.height, kSides.width, CV_16UC3);
  for (int y = 0; y < kSides.height; ++y) {
    std::copy_n(samples.Row(y), samples.Stride(), mat.ptr(y));
  }
  return mat;
}

/// `step(source, target)` on one thread.
template <class Step>
void OpenCv(benchmark::State& state, Step step) {
  cv::setNumThreads(1);
  const cv::Mat source = PictureMat();
  for (auto _ : state) {
    cv::Mat target;
    step(source, target);
    benchmark::DoNotOptimize(target.data);
  }
  CountPixels(state);
}
#endif

void Register(const std::string& name, std::unique_ptr<Stage> stage) {
  const std::shared_ptr<const Stage> shared = std::move(stage);
  for (const int threads : {1, 2}) {
    benchmark::RegisterBenchmark(
        ("rasterkit/" + name + "/threads:" + std::to_string(threads)).c_str(),
        [shared, threads](benchmark::State& state) { Rasterkit(state, *shared, threads); })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
  }
}

#if RASTERKIT_BENCH_OPENCV
template <class Step>
void RegisterPeer(const std::string& name, Step step) {
  benchmark::RegisterBenchmark(("opencv/" + name).c_str(),
                               [step](benchmark::State& state) { OpenCv(state, step); })
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
}
#endif

const bool kAreRegistered = [] {
  Register("turn_90", TurnStage(kSides, 1));
  Register("turn_180", TurnStage(kSides, 2));
  Register("crop_half", CropStage(kSides, 500, 400, 2828, 2121));
  Register("rotate_30", RotateStage(kSides, 30));
  Register("area_third", ResizeStage(kSides, kSmaller));
  Register("linear_five_quarters", ResizeStage(kSides, kLarger));
#if RASTERKIT_BENCH_OPENCV
  RegisterPeer("turn_90", [](const cv::Mat& source, cv::Mat& target) {
    cv::rotate(source, target, cv::ROTATE_90_COUNTERCLOCKWISE);
  });
  RegisterPeer("turn_180", [](const cv::Mat& source, cv::Mat& target) {
    cv::rotate(source, target, cv::ROTATE_180);
  });
  RegisterPeer("crop_half", [](const cv::Mat& source, cv::Mat& target) {
    source(cv::Rect(500, 400, 2828, 2121)).copyTo(target);
  });
  RegisterPeer("rotate_30", [](const cv::Mat& source, cv::Mat& target) {
    const auto frame = rasterkit::FrameOfRotation(kSides, 30);
    const rasterkit::Affine& old = frame.toOld;
    const cv::Matx23d matrix(old.xPerColumn, old.xPerRow, old.x, old.yPerColumn, old.yPerRow,
                             old.y);
    cv::warpAffine(source, target, matrix, {frame.sides.width, frame.sides.height},
                   cv::INTER_NEAREST | cv::WARP_INVERSE_MAP);
  });
  RegisterPeer("area_third", [](const cv::Mat& source, cv::Mat& target) {
    cv::resize(source, target, {kSmaller.width, kSmaller.height}, 0, 0, cv::INTER_AREA);
  });
  RegisterPeer("linear_five_quarters", [](const cv::Mat& source, cv::Mat& target) {
    cv::resize(source, target, {kLarger.width, kLarger.height}, 0, 0, cv::INTER_LINEAR);
  });
#endif
  return true;
}();

}  // namespace
