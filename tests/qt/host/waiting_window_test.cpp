#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <atomic>
#include <ctime>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/runtime/threads/thread.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/same_pixels.h"
#include "tests/support/sleeping_thread.h"
#include "tests/support/test_pictures.h"

// A driver that waits for its workers inside a button's handler keeps the window alive and sleeps.
namespace rasterkit {
namespace {

/// Asks to be painted again as soon as it was painted.
class Restless : public QWidget {
 public:
  using QWidget::QWidget;
  std::atomic<int> paintings{0};

 protected:
  void paintEvent(QPaintEvent*) override {
    ++paintings;
    update();
  }
};

/// A form whose button runs a driver.
class Form : public TScaledForm {
 public:
  explicit Form(std::function<void(Form&)> work) {
    auto* layout = new QVBoxLayout(this);
    picture = new Restless;
    picture->setMinimumSize(40, 40);
    button = new QPushButton("Work");
    layout->addWidget(picture);
    layout->addWidget(button);
    connect(button, &QPushButton::clicked, this, Guarded([this, work = std::move(work)] {
              work(*this);
              accept();
            }));
  }

  /// Opens the form, presses the button, and returns when the work is done.
  int Run() {
    test::WhenModal([this](QWidget&) { QTest::mouseClick(button, Qt::LeftButton); });
    return ShowModal();
  }

  Restless* picture;
  QPushButton* button;
};

/// Works until a condition that the main thread must bring about.
class Until : public TThread {
 public:
  explicit Until(std::function<bool()> condition) : condition_(std::move(condition)) {}

 protected:
  void Execute() override {
    while (!condition_()) std::this_thread::yield();
  }

 private:
  std::function<bool()> condition_;
};

void WaitFor(std::function<bool()> condition) {
  bool isDone = false;
  const auto worker = MakeThread<Until>(std::move(condition));
  worker->OnTerminate = [&](TThread&) { isDone = true; };
  worker->Start();
  while (!isDone) ThreadQueue::Current().WaitAndDispatch();
}

TEST(WaitingWindow, Driver_Should_KeepRepainting_When_AButtonStartedIt) {
  const QtHost host;
  int seen = 0;
  // Without repainting this would never end.
  Form form([&](Form& self) {
    const int before = self.picture->paintings;
    WaitFor([&] { return self.picture->paintings >= before + 5; });
    seen = self.picture->paintings - before;
  });
  EXPECT_EQ(form.Run(), mrOk);
  EXPECT_GE(seen, 5);
}

TEST(WaitingWindow, Driver_Should_Sleep_When_NothingHappens) {
  const QtHost host;
  bool slept = false;
  Form form([&](Form&) {
    const pid_t driver = test::ThisThread();
    WaitFor([&] { return slept = test::FallsAsleep(driver), true; });
  });
  EXPECT_EQ(form.Run(), mrOk);
  EXPECT_TRUE(slept);
}

double ProcessorMilliseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return 1000.0 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e6;
}

TEST(WaitingWindow, Driver_Should_NotSpin_When_ItWaitsLong) {
  constexpr int kTurns = 30;
  std::atomic<int> turns{0};
  HostPorts().messagePump = [&] {
    ++turns;
    QCoreApplication::processEvents();
  };
  const QtHost host;
  const double before = ProcessorMilliseconds();
  WaitFor([&] {
    // Asleep as well: this thread must not take the processor from the one that is measured.
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return turns >= kTurns;
  });
  const double used = ProcessorMilliseconds() - before;
  HostPorts().messagePump = nullptr;
  // A driver that spins uses the whole interval between two turns.
  const double interval = static_cast<double>(TApplication::kPumpInterval.count());
  EXPECT_LT(used, kTurns * interval / 4);
}

TEST(WaitingWindow, Kontrast_Should_GiveTheSamePixels_When_AButtonStartsItOnSeveralThreads) {
  const QtHost host;
  TBitmap expected;
  expected.SetPixelFormat(pf24bit);
  expected.SetSize(301, 1203);
  for (int y = 0; y < expected.Height(); ++y) {
    for (int i = 0; i < 3 * expected.Width(); ++i) expected.ScanLine(y)[i] = (7 * i + 13 * y) % 253;
  }
  TBitmap bitmap;
  bitmap.Assign(&expected);
  // Outside of Qt's loop and on as many threads: black and white are treated alike then.
  Kontrast(&expected, 30, 3, {});
  Form form([&](Form&) { Kontrast(&bitmap, 30, 3, {}); });
  EXPECT_EQ(form.Run(), mrOk);
  EXPECT_TRUE(test::SamePixels(bitmap, expected));
}

TEST(WaitingWindow, Form_Should_SurviveBeingClosed_When_ADriverWaits) {
  const QtHost host;
  bool isOver = false;
  Form form([&](Form& self) {
    std::atomic<bool> isClosed{false};
    ThreadQueue::Current().Post([&] {
      self.reject();
      isClosed = true;
    });
    WaitFor([&] { return isClosed.load(); });
    isOver = true;
  });
  // The work's end accepts, but the user was faster.
  form.Run();
  EXPECT_TRUE(isOver);
}

TEST(WaitingWindow, Error_Should_BeShown_When_TheWorkThrows) {
  const QtHost host;
  HostPorts().messageBox = nullptr;
  std::string shown;
  Form* running = nullptr;
  HostPorts().messageBox = [&](const std::string& text) {
    shown = text;
    running->reject();
  };
  Form form([](Form&) { throw std::runtime_error("no memory"); });
  running = &form;
  EXPECT_EQ(form.Run(), mrCancel);
  EXPECT_EQ(shown, "no memory");
}

}  // namespace
}  // namespace rasterkit
