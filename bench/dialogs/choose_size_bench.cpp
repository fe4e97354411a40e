// A number typed into the size window: new numbers, resolution, memory and reason of a result, for
// pictures of 108 and 250 megapixels. Nothing reads a pixel.
#include <memory>
#include <utility>

#include <benchmark/benchmark.h>

#include <rasterkit/dialogs/size/size_answer.h>
#include <rasterkit/dialogs/size/size_facts.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {
namespace {

void TypedNumber(benchmark::State& state) {
  auto rows = std::make_unique<TBitmap>();
  rows->ResetPixels(pf24bit, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const Picture picture = Picture::Of(std::move(rows));
  ChangeSizeModel model(picture.Width(), picture.Height(), kEditorSizeRules);
  StartSize(model, picture, {});
  model.BytesOf = [&](int32_t width, int32_t height) {
    return BytesAtSize(picture, width, height, model.GetFilter());
  };
  int width = 1000;
  for (auto unused : state) {
    model.FlEdChange(ChangeSizeModel::Field::width, ++width);
    benchmark::DoNotOptimize(SizeResultText(model, picture));
    benchmark::DoNotOptimize(SizeFaultText(model));
  }
}
BENCHMARK(TypedNumber)->Args({12000, 9000})->Args({20000, 12500})->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace rasterkit
