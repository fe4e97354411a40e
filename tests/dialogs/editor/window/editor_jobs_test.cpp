// Work on another thread: what the window does meanwhile.

#include <QElapsedTimer>
#include <QMessageBox>
#include <QProgressBar>
#include <atomic>

#include <rasterkit/dialogs/editor/window/editor_jobs.h>
#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/runtime/errors.h>

#include "tests/dialogs/editor/window/editor_form_test.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

// The thread.

class Jobs : public testing::Test {
 protected:
  void Start(std::function<void(std::stop_token, const std::function<void(double)>&)> work) {
    EditorJob job;
    job.title = "Working";
    job.work = std::move(work);
    job.done = [this](const std::string& anError, bool wasIt) {
      error = anError;
      wasCanceled = wasIt;
      doneOn = std::this_thread::get_id();
      ++done;
    };
    jobs.Start(std::move(job));
  }
  void Wait() {
    ASSERT_TRUE(QTest::qWaitFor([this] { return done > 0; }, 60'000));
  }

  std::string error;
  bool wasCanceled = false;
  std::thread::id doneOn;
  int done = 0;
  EditorJobs jobs;
};

TEST_F(Jobs, Work_Should_RunElsewhere_AndEndHere) {
  std::thread::id worked;
  Start([&](std::stop_token, const auto& progress) {
    worked = std::this_thread::get_id();
    progress(0.5);
  });
  EXPECT_TRUE(jobs.IsRunning());
  Wait();
  EXPECT_NE(worked, std::this_thread::get_id());
  EXPECT_EQ(doneOn, std::this_thread::get_id());
  EXPECT_EQ(error, "");
  EXPECT_FALSE(wasCanceled);
  EXPECT_FALSE(jobs.IsRunning());
}

TEST_F(Jobs, WhatWorkThrows_Should_BeAnError) {
  Start([](std::stop_token, const auto&) { throw FileError("the disk is full", "plan.png"); });
  Wait();
  EXPECT_EQ(error, "plan.png: the disk is full");
  EXPECT_FALSE(wasCanceled);
}

TEST_F(Jobs, WhatIsNoException_Should_BeAnErrorToo) {
  Start([](std::stop_token, const auto&) { throw 1; });
  Wait();
  EXPECT_NE(error, "");
}

TEST_F(Jobs, ACanceledJob_Should_SaySo) {
  Start([](const std::stop_token& cancel, const auto&) {
    while (!cancel.stop_requested()) std::this_thread::yield();
    throw CanceledError("the call was canceled");
  });
  jobs.Cancel();
  Wait();
  EXPECT_TRUE(wasCanceled);
  EXPECT_EQ(error, "");
}

TEST_F(Jobs, TheNextJob_Should_BeStartedByTheEndOfTheOne) {
  EditorJob first;
  bool hasSecondRun = false;
  first.work = [](std::stop_token, const auto&) {};
  first.done = [&](const std::string&, bool) {
    Start([&](std::stop_token, const auto&) { hasSecondRun = true; });
  };
  jobs.Start(std::move(first));
  Wait();
  EXPECT_TRUE(hasSecondRun);
}

TEST(JobsThatEndLate, Should_NotBeTold_When_TheirOwnerIsGone) {
  bool isTold = false;
  std::atomic<bool> hasEnded = false;
  {
    EditorJobs jobs;
    EditorJob job;
    job.work = [&](const std::stop_token& cancel, const auto&) {
      while (!cancel.stop_requested()) std::this_thread::yield();
      hasEnded = true;
    };
    job.done = [&](const std::string&, bool) { isTold = true; };
    jobs.Start(std::move(job));
  }
  EXPECT_TRUE(hasEnded);
  QCoreApplication::processEvents();
  EXPECT_FALSE(isTold);
}

// The window, with a page that is drawn as long as the test likes.

struct Gate {
  std::atomic<bool> isOpen = false;
  std::atomic<bool> isAtWork = false;
};

class SlowPages : public PdfDocument {
 public:
  explicit SlowPages(Gate& gate) : gate_(gate) {}

  void LoadFromFile(const std::string&, const std::string&) override {}
  int PageCount() const override { return 3; }
  PdfPageSize PageSize(int) const override { return {72, 144}; }
  bool ExportPage(int, double scale, PdfRotation, TBitmap& bitmap,
                  const PdfKeepGoing& keepGoing) override {
    gate_.isAtWork = true;
    while (!gate_.isOpen) {
      if (keepGoing && !keepGoing()) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const PdfPixels pixels = PdfPagePixels(PageSize(0), scale);
    bitmap.ResetPixels(pf24bit, static_cast<int>(pixels.width), static_cast<int>(pixels.height));
    return true;
  }

 private:
  Gate& gate_;
};

class EditorAtWork : public EditorFormTest {
 protected:
  EditorAtWork() {
    options.dpi = 100;
    PdfDocumentFactory() = [this] { return std::make_unique<SlowPages>(gate); };
    file = folder.Write("plan.pdf", "%PDF-1.4\n");
  }
  ~EditorAtWork() override {
    gate.isOpen = true;
    form.reset();
    PdfDocumentFactory() = {};
  }
  /// The window with its first page.
  void ShowDrawn() {
    gate.isOpen = true;
    Show(file);
    gate.isOpen = false;
    gate.isAtWork = false;
  }
  /// Begins to draw the page anew and waits until the window says so.
  void BeginJob() {
    form->Model().SetDrawingDpi(200);
    ASSERT_TRUE(QTest::qWaitFor([this] { return Panel().isVisible(); }, 60'000));
  }
  QWidget& Panel() const { return Find<QWidget>("PanelJob"); }

  Gate gate;
  std::string file;
};

TEST_F(EditorAtWork, TheWindow_Should_SayWhatGoesOn_AndAnswer) {
  ShowDrawn();
  BeginJob();
  EXPECT_TRUE(gate.isAtWork);
  EXPECT_FALSE(Find<QProgressBar>("ProgressJob").accessibleName().isEmpty());
  EXPECT_TRUE(Find<QWidget>("ButtonCancelJob").isEnabled());
  EXPECT_TRUE(Find<QWidget>("ButtonCancelJob").hasFocus());
  for (const char* name : {"TurnLeft", "Crop", "Save", "Open"}) {
    EXPECT_FALSE(Action(name).isEnabled()) << name;
  }
  EXPECT_FALSE(Button(nbPost).isEnabled());
  EXPECT_TRUE(Button(nbCancel).isEnabled());
  // The loop runs, and the view can be used.
  int ticks = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
  timer.start(1);
  ASSERT_TRUE(QTest::qWaitFor([&] { return ticks >= 20; }, 60'000));
  const double before = form->Pane().Zoom().Factor();
  Action("ZoomIn").trigger();
  EXPECT_GT(form->Pane().Zoom().Factor(), before);
  gate.isOpen = true;
  WaitForJobs();
  EXPECT_FALSE(Panel().isVisible());
  EXPECT_EQ(form->Model().DrawingDpi(), 200);
}

TEST_F(EditorAtWork, Escape_Should_CancelTheJob_AndStay) {
  ShowDrawn();
  BeginJob();
  Press(Qt::Key_Escape);
  WaitForJobs();
  EXPECT_TRUE(form->isVisible());
  EXPECT_EQ(form->Model().DrawingDpi(), 100);
  EXPECT_EQ(Find<QSpinBox>("SpinEditResolution").value(), 100);
}

TEST_F(EditorAtWork, ItsCancelButton_Should_CancelTheJob_AndGiveTheFocusBack) {
  ShowDrawn();
  Find<QWidget>("SpinEditAngle").setFocus();
  BeginJob();
  QTest::mouseClick(&Find<QWidget>("ButtonCancelJob"), Qt::LeftButton);
  WaitForJobs();
  EXPECT_EQ(form->Model().DrawingDpi(), 100);
  EXPECT_EQ(form->focusWidget(), &Find<QWidget>("SpinEditAngle"));
}

TEST_F(EditorAtWork, TheFrame_Should_CancelTheJobFirst_AndClose) {
  ShowDrawn();
  BeginJob();
  form->close();
  EXPECT_TRUE(form->isVisible()) << "until the job has ended";
  ASSERT_TRUE(QTest::qWaitFor([this] { return !form->isVisible(); }, 60'000));
  EXPECT_FALSE(form->IsJobRunning());
}

TEST_F(EditorAtWork, TheFrame_Should_CancelTheJob_AndAsk_When_WorkWouldBeLost) {
  ShowDrawn();
  gate.isOpen = true;
  Use("TurnLeft");
  gate.isOpen = false;
  BeginJob();
  bool isAsked = false;
  WhenModal([&](QWidget& box) {
    isAsked = true;
    QTest::mouseClick(box.findChild<QAbstractButton*>("ButtonCancel"), Qt::LeftButton);
  });
  form->close();
  ASSERT_TRUE(QTest::qWaitFor([&] { return isAsked; }, 60'000));
  EXPECT_TRUE(form->isVisible());
  EXPECT_EQ(form->Model().Place(), 1u);
}

TEST_F(EditorAtWork, TheFirstPage_Should_BeDrawnWhileTheWindowIsThere) {
  Make();
  form->Model().Open(file, 1);
  ASSERT_TRUE(ShowSettled(*form));
  EXPECT_EQ(form->Model().Pixels(), nullptr);
  ASSERT_TRUE(QTest::qWaitFor([this] { return Panel().isVisible(); }, 60'000));
  gate.isOpen = true;
  WaitForJobs();
  ASSERT_NE(form->Model().Pixels(), nullptr);
  EXPECT_TRUE(Button(nbPost).isEnabled()) << "a page that was just opened can be written";
}

TEST_F(EditorAtWork, AWindowThatIsDestroyed_Should_EndItsJob) {
  ShowDrawn();
  BeginJob();
  form.reset();
  SUCCEED();
}

TEST_F(EditorAtWork, TheResolution_Should_BeTakenWithEnter) {
  ShowDrawn();
  gate.isOpen = true;
  auto& field = Find<TSpinEditInt>("SpinEditResolution");
  ASSERT_TRUE(field.isVisible());
  field.setFocus();
  field.selectAll();
  QTest::keyClicks(&field, "50");
  EXPECT_EQ(form->Model().DrawingDpi(), 100) << "not while it is typed";
  Press(Qt::Key_Return);
  WaitForJobs();
  EXPECT_EQ(form->Model().DrawingDpi(), 50);
  EXPECT_EQ(form->Model().Pixels()->Width(), 50);
  EXPECT_TRUE(form->isVisible());
}

TEST_F(EditorAtWork, AResolutionTooHighForMemory_Should_BeTold_AndKeepThePage) {
  ShowDrawn();
  auto& field = Find<TSpinEditInt>("SpinEditResolution");
  field.setFocus();
  field.setMaximum(1'000'000);
  field.selectAll();
  QTest::keyClicks(&field, "900000");
  QString told;
  WhenModal([&](QWidget& box) { told = dynamic_cast<QMessageBox&>(box).text(); });
  Press(Qt::Key_Return);
  WaitForJobs();
  EXPECT_FALSE(told.isEmpty());
  EXPECT_EQ(form->Model().DrawingDpi(), 100);
  EXPECT_EQ(field.value(), 100);
  EXPECT_NE(form->Model().Pixels(), nullptr);
}

}  // namespace
}  // namespace rasterkit::test
