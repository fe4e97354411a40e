// Frames of the crop tool on a bitmap of 250 megapixels (16000 x 15625, 24-bit) in a box of 1920 x
// 1080, painted off the screen: from the mouse event to the finished frame.
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <memory>

#include <benchmark/benchmark.h>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_rect.h>

namespace rasterkit {
namespace {

constexpr int kWidth = 16000, kHeight = 15625;
constexpr int kBoxWidth = 1920, kBoxHeight = 1080;

QApplication& TheApplication() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "crop_tool_bench";
  static char* argv[] = {name, nullptr};
  // Never destroyed: at the end of the process what it stands on may be gone before it.
  static QApplication& application = *std::make_unique<QApplication>(argc, argv).release();
  return application;
}

/// Made once: filling it takes longer than any measurement.
TBitmap& LargeBitmap() {
  static TBitmap bitmap = [] {
    TBitmap made;
    made.ResetPixels(pf24bit, kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
      uint8_t* row = made.ScanLine(y);
      for (int i = 0; i < 3 * kWidth; ++i) row[i] = static_cast<uint8_t>(i * 7 + y * 13 + (i >> 6));
    }
    return made;
  }();
  return bitmap;
}

class ShownTool {
 public:
  ShownTool() {
    box.resize(kBoxWidth, kBoxHeight);
    box.show();
    tool.SetOrgBitmap(&LargeBitmap());
    QApplication::processEvents();
    box.repaint();
  }

  void Send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held) {
    QMouseEvent event(type, at, box.mapToGlobal(at), button, held, Qt::NoModifier);
    QApplication::sendEvent(&box, &event);
  }
  void Press(QPoint at) { Send(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton); }
  void MoveTo(QPoint at) { Send(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton); }
  void Release(QPoint at) { Send(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton); }
  void Frame() { box.repaint(); }

  QApplication& application = TheApplication();
  TPaintBox box;
  TBmpCutRect tool{&box, nullptr};
};

/// Counted from the box in any case; see PictureView.
void ReportCaches(benchmark::State& state) {
  state.counters["cache_MB"] = 8.0 * kBoxWidth * kBoxHeight / 1e6;
}

/// One step of drawing or moving the rectangle.
void DragFrame(benchmark::State& state) {
  ShownTool shown;
  shown.Press({600, 200});
  shown.Frame();
  int i = 0;
  for (auto _ : state) {
    ++i;
    shown.MoveTo({700 + i % 500, 300 + i % 300});
    shown.Frame();
  }
  ReportCaches(state);
}
BENCHMARK(DragFrame)->Unit(benchmark::kMillisecond);

/// The frame after the button was released: the picture outside becomes dark.
void ReleaseFrame(benchmark::State& state) {
  ShownTool shown;
  int i = 0;
  for (auto _ : state) {
    state.PauseTiming();
    shown.tool.DelCutRect();
    shown.Press({600, 200});
    shown.MoveTo({1000 + ++i % 50, 700});
    shown.Frame();
    state.ResumeTiming();
    shown.Release({1000 + i % 50, 700});
    shown.Frame();
  }
  ReportCaches(state);
}
BENCHMARK(ReleaseFrame)->Unit(benchmark::kMillisecond);

/// One notch of the wheel, with or without a cut.
void WheelFrame(benchmark::State& state) {
  ShownTool shown;
  if (state.range(0) != 0) shown.tool.SetBmpCutRect({4000, 4000, 9000, 9000});
  bool handled = false;
  int i = 0;
  for (auto _ : state) {
    shown.tool.OnMouseWheel(++i % 40 < 20 ? 120 : -120, {900, 500}, handled);
    shown.Frame();
  }
  ReportCaches(state);
}
BENCHMARK(WheelFrame)->ArgName("cut")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// One step of panning at the bitmap's own size.
void PanFrame(benchmark::State& state) {
  ShownTool shown;
  shown.tool.SetFitInOrgBmp(false);
  shown.Send(QEvent::MouseButtonPress, {900, 500}, Qt::MiddleButton, Qt::MiddleButton);
  int i = 0;
  for (auto _ : state) {
    ++i;
    shown.Send(QEvent::MouseMove, {900 - i % 300, 500 - i % 200}, Qt::NoButton, Qt::MiddleButton);
    shown.Frame();
  }
  ReportCaches(state);
}
BENCHMARK(PanFrame)->Unit(benchmark::kMillisecond);

/// A slice of smoothing, which runs while nothing else is to be done: two rows.
void RefineTwoRows(benchmark::State& state) {
  PictureView view;
  const PictureView::Window window{kBoxWidth, kBoxHeight, {407, 0, 1513, 1080}, 0};
  view.Show(&LargeBitmap(), 1, window);
  for (auto _ : state) {
    if (view.RefineRows(2)) continue;
    state.PauseTiming();
    view.Forget();
    view.Show(&LargeBitmap(), 1, window);
    state.ResumeTiming();
  }
}
BENCHMARK(RefineTwoRows)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace rasterkit
