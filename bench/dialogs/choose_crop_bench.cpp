// Steps of a drag in the crop window for people: a picture of 108 megapixels (12000 x 9000, 24-bit)
// in a window of 1920 x 1080, painted off the screen: from the mouse event to the finished frame of
// the whole window, numbers and texts included.
#include <QApplication>
#include <QMouseEvent>
#include <memory>

#include <benchmark/benchmark.h>

#include <rasterkit/dialogs/crop/choose_crop_form.h>
#include <rasterkit/qt/controls/paint_box.h>

namespace rasterkit {
namespace {

constexpr int kWidth = 12000, kHeight = 9000;
constexpr int kWindowWidth = 1920, kWindowHeight = 1080;

void StartApplication() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "choose_crop_bench";
  static char* argv[] = {name, nullptr};
  // Never destroyed: at the end of the process what it stands on may be gone before it.
  static QApplication& application = *std::make_unique<QApplication>(argc, argv).release();
  benchmark::DoNotOptimize(&application);
}

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

CropFacts Facts() {
  CropFacts facts;
  facts.width = kWidth;
  facts.height = kHeight;
  facts.resolution = {600, 600};
  facts.affine = Affine{0.1, 0, 0, -0.1, 412345.05, 5654320.95};
  facts.mapUnit = MapUnitNamed("m");
  return facts;
}

class ShownWindow {
 public:
  ShownWindow() : form(LargeBitmap(), Facts(), {}, std::nullopt, {}) {
    form.resize(kWindowWidth, kWindowHeight);
    form.show();
    QApplication::processEvents();
    form.Model().ChooseUnit(LengthUnit::map);
    form.Model().SetGuide(CropGuide::thirds);
    form.ShowAll();
    form.Tool().SetBmpCutRect({3000, 2000, 9000, 7000});
    QApplication::processEvents();
  }
  void Send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held) {
    QWidget& box = *form.findChild<TPaintBox*>("PaintBox");
    QMouseEvent event(type, at, box.mapToGlobal(at), button, held, Qt::NoModifier);
    QApplication::sendEvent(&box, &event);
  }
  /// Events and frames that a step caused.
  static void Finish() {
    QApplication::sendPostedEvents();
    QApplication::processEvents();
  }

  TFormChooseCrop form;
};

enum Target { move, corner, draw };

void DragStep(benchmark::State& state) {
  StartApplication();
  ShownWindow window;
  const RDRect cut = window.form.Tool().CutRect();
  const RDRect all = window.form.Tool().PaintRect();
  const QPointF starts[] = {{(cut.Left + cut.Right) / 2, (cut.Top + cut.Bottom) / 2},
                            {cut.Right, cut.Bottom},
                            {all.Left + 20, all.Top + 20}};
  const QPoint start = starts[state.range(0)].toPoint();
  window.Send(QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
  int step = 0;
  for (auto _ : state) {
    ++step;
    const QPoint at = start + QPoint(10 + step * 7 % 150, 10 + step * 5 % 90);
    window.Send(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton);
    ShownWindow::Finish();
  }
}
BENCHMARK(DragStep)->Arg(move)->Arg(corner)->Arg(draw)->Unit(benchmark::kMillisecond);

void FirstPaint(benchmark::State& state) {
  StartApplication();
  LargeBitmap();
  for (auto _ : state) ShownWindow window;
}
BENCHMARK(FirstPaint)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace rasterkit
