// What moving a control of the change-values dialog costs on a picture of 250 megapixels, until
// both previews are painted (the goal is 50 ms), and what OK costs. The arguments are the width and
// the height of the form.
#include <QApplication>
#include <QSlider>
#include <cstring>
#include <memory>

#include <benchmark/benchmark.h>

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/chg_bmp_form.h>
#include <rasterkit/graphics/bitmap.h>

namespace {

using rasterkit::ChangeValuesModel;
using rasterkit::TBitmap;
using rasterkit::ValueControl;

constexpr int kSide = 15812;

QApplication& TheApplication() {
  static int count = 1;
  static char name[] = "values_dialog_bench";
  static char* arguments[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Never destroyed: at the end of the process what it stands on may be gone before it.
  static QApplication& application = *std::make_unique<QApplication>(count, arguments).release();
  return application;
}

/// Every color and no even area.
const TBitmap& Picture(rasterkit::TPixelFormat format) {
  static std::unique_ptr<TBitmap> picture;
  if (picture && picture->PixelFormat() == format) return *picture;
  picture = nullptr;
  picture = std::make_unique<TBitmap>();
  picture->ResetPixels(format, kSide, kSide);
  for (int y = 0; y < kSide; ++y) {
    uint8_t* row = picture->ScanLine(y);
    const size_t bytes = picture->Content().RowBytes();
    for (size_t i = 0; i < bytes; ++i) row[i] = static_cast<uint8_t>(i * 37 + i / 64 + 11 * y);
  }
  return *picture;
}

enum Tasks { fourTimesBrightness, everyTask };

void Start(ChangeValuesModel& model, Tasks tasks) {
  model.Load({});
  model.SetOperation(0);
  if (tasks == fourTimesBrightness) return;
  model.Reset();
  model.Change(ValueControl::lightness, 11);
  model.Change(ValueControl::contrast, 12);
  model.Change(ValueControl::sharpen, 13);
  model.Change(ValueControl::red, 14);
}

/// From a slider that moves to the painted previews.
void MoveSlider(benchmark::State& state, rasterkit::TPixelFormat format, Tasks tasks) {
  TheApplication();
  ChangeValuesModel model(Picture(format));
  Start(model, tasks);
  rasterkit::TFormChgBmp form(model);
  form.resize(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  form.show();
  QApplication::processEvents();
  auto* slider = form.findChild<QSlider*>("TrackLightness");
  int value = 20;
  for (auto _ : state) {
    slider->setValue(value = 50 - value);
    QApplication::processEvents();
  }
  const auto box = form.findChild<QWidget*>("PaintBoxChg")->size();
  state.SetLabel(std::to_string(box.width()) + " x " + std::to_string(box.height()) + " seen");
}

/// The whole picture, as when OK is pressed.
void Confirm(benchmark::State& state, rasterkit::TPixelFormat format) {
  for (auto _ : state) {
    state.PauseTiming();
    auto bitmap = Picture(format).Clone();
    state.ResumeTiming();
    rasterkit::TChgBmpValuesRec values;
    values.Brightness = 20;
    rasterkit::ChangeBitmap(0, bitmap.get(), false, values);
  }
}

BENCHMARK_CAPTURE(MoveSlider, color_brightness, rasterkit::pf24bit, fourTimesBrightness)
    ->Args({820, 640})
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MoveSlider, color_every_task, rasterkit::pf24bit, everyTask)
    ->Args({820, 640})
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Confirm, color, rasterkit::pf24bit)->Iterations(2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MoveSlider, palette_every_task, rasterkit::pf8bit, everyTask)
    ->Args({820, 640})
    ->Args({1920, 1080})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MoveSlider, mono_every_task, rasterkit::pf1bit, everyTask)
    ->Args({1920, 1080})
    ->Unit(benchmark::kMillisecond);

}  // namespace
