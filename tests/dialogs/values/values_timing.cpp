#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QStandardPaths>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include <rasterkit/dialogs/values/choose_values_form.h>
#include <rasterkit/dialogs/values/preview_box.h>

// values_timing MEGAPIXELS [WIDTH HEIGHT]: prints how long the window for values needs with a
// 24-bit picture of that size: to its first paint, for a step of a track bar in each view, and the
// longest time for which the event loop did not turn.
namespace rasterkit {
namespace {

double Milliseconds(const QElapsedTimer& timer) {
  return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

TBitmap Noise(int megapixels) {
  TBitmap picture;
  const int width = static_cast<int>(std::sqrt(megapixels * 1e6 * 4 / 3));
  picture.ResetPixels(pf24bit, width, static_cast<int>(megapixels * 1e6 / width));
  std::mt19937 random(1);
  for (int y = 0; y < picture.Height(); ++y) {
    auto* const row = reinterpret_cast<uint32_t*>(picture.ScanLine(y));
    for (size_t i = 0; i < picture.Stride() / 4; ++i) row[i] = static_cast<uint32_t>(random());
  }
  return picture;
}

/// The longest time between two turns of the event loop while it lives.
class LoopWatch : public QObject {
 public:
  LoopWatch() {
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            [this] { Turn(); });
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, this,
            [this] { timer_.restart(); });
    timer_.start();
  }
  double Longest() const { return longest_; }

 private:
  void Turn() {
    longest_ = std::max(longest_, Milliseconds(timer_));
    timer_.restart();
  }
  QElapsedTimer timer_;
  double longest_ = 0;
};

void TimeSteps(TFormChooseValues& form, ValueSession& session, const char* view) {
  double worst = 0, sum = 0;
  constexpr int kSteps = 20;
  for (int i = 1; i <= kSteps; ++i) {
    QElapsedTimer timer;
    timer.start();
    session.Change(i % 2 == 0 ? ValueControl::sharpen : ValueControl::contrast, 2 * i);
    form.Preview().repaint();
    const double time = Milliseconds(timer);
    worst = std::max(worst, time);
    sum += time;
    QCoreApplication::processEvents();
  }
  std::printf("  step, %-28s mean %6.1f ms, most %6.1f ms\n", view, sum / kSteps, worst);
}

void TimeWindow(const TBitmap& picture, QSize size) {
  QElapsedTimer timer;
  timer.start();
  ValueSession session(picture, AdjustColors{});
  TFormChooseValues form(session);
  form.resize(size);
  form.show();
  if (!QTest::qWaitForWindowExposed(&form)) return;
  form.Preview().repaint();
  std::printf("  window painted after          %6.1f ms\n", Milliseconds(timer));
  LoopWatch watch;
  while (form.Preview().Picture().isNull() || form.Renderer().IsWaiting()) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  std::printf("  fitted picture as means after %6.1f ms, event loop stood still %.1f ms at most\n",
              Milliseconds(timer), watch.Longest());
  auto& mode = *form.findChild<QComboBox*>("ComboView");
  const char* const names[] = {"side by side", "split", "changed only"};
  for (int i = 0; i < 3; ++i) {
    mode.setCurrentIndex(i);
    form.Viewport().Fit();
    form.Preview().Refresh();
    form.Preview().repaint();
    while (form.Renderer().IsWaiting()) QTest::qWait(5);
    TimeSteps(form, session, (std::string(names[i]) + ", fitted").c_str());
    form.Viewport().ShowActualSize();
    TimeSteps(form, session, (std::string(names[i]) + ", 1:1").c_str());
    form.Viewport().Fit();
    form.Viewport().ZoomBy(1);
    form.Preview().Refresh();
    form.Preview().repaint();
    while (form.Renderer().IsWaiting()) QTest::qWait(5);
    TimeSteps(form, session, (std::string(names[i]) + ", between").c_str());
  }
  timer.restart();
  form.close();
  std::printf("  closed in                     %6.1f ms\n", Milliseconds(timer));
}

void TimeThreshold(const TBitmap& picture, QSize size) {
  QElapsedTimer timer;
  timer.start();
  ValueSession session(picture, MakeMono{});
  TFormChooseValues form(session);
  form.resize(size);
  form.show();
  if (!QTest::qWaitForWindowExposed(&form)) return;
  form.Preview().repaint();
  std::printf("  threshold: painted after      %6.1f ms\n", Milliseconds(timer));
  LoopWatch watch;
  const int sampled = session.FoundThreshold().value_or(-1);
  while (form.Renderer().IsWaiting()) QTest::qWait(5);
  QTest::qWait(1500);
  std::printf("  threshold sampled %d, found %d; event loop stood still %.1f ms at most\n", sampled,
              session.FoundThreshold().value_or(-1), watch.Longest());
}

}  // namespace
}  // namespace rasterkit

int main(int argc, char** argv) {
  using namespace rasterkit;
  QStandardPaths::setTestModeEnabled(true);
  const QApplication application(argc, argv);
  const int megapixels = argc > 1 ? std::atoi(argv[1]) : 108;
  const QSize size = argc > 3 ? QSize(std::atoi(argv[2]), std::atoi(argv[3])) : QSize(1280, 800);
  const TBitmap picture = Noise(megapixels);
  std::printf("%d x %d pixels, window %d x %d, scale %g\n", picture.Width(), picture.Height(),
              size.width(), size.height(), application.devicePixelRatio());
  TimeWindow(picture, size);
  TimeThreshold(picture, size);
  return 0;
}
