#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/host/pdf_page_dialog.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/thread.h>
#include <rasterkit/runtime/threads/timer.h>

#include "tests/support/forms/form_events.h"

// The guarantees of the library's queue while a Qt event loop runs.
namespace rasterkit {
namespace {

class QtHostTest : public testing::Test {
 protected:
  QtHost host_;
};

class Idle : public TThread {
 public:
  using TThread::TThread;

 protected:
  void Execute() override {}
};

class Broken : public TThread {
 public:
  using TThread::TThread;

 protected:
  void Execute() override { throw std::runtime_error("broken"); }
};

TEST_F(QtHostTest, Message_Should_RunOnTheMainThread_When_AnotherThreadPostsIt) {
  QEventLoop loop;
  std::thread::id ranOn;
  std::thread poster([&, queue = ThreadQueue::Share()] {
    queue->Post([&] {
      ranOn = std::this_thread::get_id();
      loop.quit();
    });
  });
  loop.exec();
  poster.join();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(QtHostTest, Messages_Should_AllRunInOrder_When_ManyArriveAtOnce) {
  constexpr int kCount = 1000;
  QEventLoop loop;
  std::vector<int> ran;
  std::thread poster([&, queue = ThreadQueue::Share()] {
    for (int i = 0; i < kCount; ++i) {
      queue->Post([&, i] {
        ran.push_back(i);
        if (i == kCount - 1) loop.quit();
      });
    }
  });
  loop.exec();
  poster.join();
  ASSERT_EQ(ran.size(), size_t{kCount});
  for (int i = 0; i < kCount; ++i) ASSERT_EQ(ran[i], i);
}

TEST_F(QtHostTest, Message_Should_Run_When_AMessagePostsIt) {
  QEventLoop loop;
  std::vector<int> ran;
  ThreadQueue& queue = ThreadQueue::Current();
  queue.Post([&] {
    queue.Post([&] {
      ran.push_back(2);
      loop.quit();
    });
    ran.push_back(1);
  });
  loop.exec();
  EXPECT_EQ(ran, (std::vector<int>{1, 2}));
  EXPECT_FALSE(queue.NeedsAttention());
}

TEST_F(QtHostTest, TerminationEvent_Should_ArriveOnTheMainThread_When_QtsLoopTurns) {
  QEventLoop loop;
  std::thread::id ranOn;
  const auto thread = MakeThread<Idle>();
  thread->OnTerminate = [&](TThread& sender) {
    EXPECT_EQ(&sender, thread.get());
    ranOn = std::this_thread::get_id();
    loop.quit();
  };
  thread->Start();
  loop.exec();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(QtHostTest, TerminationEvent_Should_Arrive_When_TheThreadFails) {
  QEventLoop loop;
  const auto thread = MakeThread<Broken>();
  thread->OnTerminate = [&](TThread& sender) {
    EXPECT_TRUE(sender.FatalException());
    loop.quit();
  };
  thread->Start();
  loop.exec();
}

TEST_F(QtHostTest, Timer_Should_TickAgainAndAgain_When_QtsLoopTurns) {
  QEventLoop loop;
  int ticks = 0;
  TTimer timer;
  timer.SetInterval(1);
  timer.OnTimer = [&](TTimer&) {
    if (++ticks == 3) loop.quit();
  };
  loop.exec();
  EXPECT_EQ(ticks, 3);
}

TEST_F(QtHostTest, Timer_Should_Tick_When_ALongerOneIsAhead) {
  QEventLoop loop;
  TTimer first;
  first.SetInterval(3'600'000);
  first.OnTimer = [](TTimer&) { FAIL() << "an hour too early"; };
  TTimer second;
  second.SetInterval(1);
  const TTimer* ticked = nullptr;
  second.OnTimer = [&](TTimer& sender) {
    ticked = &sender;
    loop.quit();
  };
  loop.exec();
  EXPECT_EQ(ticked, &second);
}

TEST(QtHost, Timer_Should_Tick_When_ItWasMadeBeforeTheHost) {
  QEventLoop loop;
  TTimer timer;
  timer.SetInterval(1);
  std::thread::id tickedOn;
  int ticks = 0;
  timer.OnTimer = [&](TTimer&) {
    tickedOn = std::this_thread::get_id();
    if (++ticks == 2) loop.quit();
  };
  const QtHost host;
  loop.exec();
  EXPECT_EQ(tickedOn, std::this_thread::get_id());
  EXPECT_EQ(ticks, 2);
}

TEST_F(QtHostTest, TerminationEventAndTimer_Should_Arrive_When_AModalFormIsOpen) {
  TScaledForm form;
  bool isTerminated = false;
  const auto thread = MakeThread<Idle>();
  thread->OnTerminate = [&](TThread&) { isTerminated = true; };
  thread->Start();
  TTimer timer;
  timer.SetInterval(1);
  timer.OnTimer = [&](TTimer&) {
    if (isTerminated) form.accept();
  };
  EXPECT_EQ(form.ShowModal(), mrOk);
}

TEST_F(QtHostTest, Exception_Should_BeShownAndGoNoFurther_When_AHandlerThrows) {
  std::string shown;
  HostPorts().messageBox = [&](const std::string& text) { shown = text; };
  QEventLoop loop;
  ThreadQueue::Current().Post([] { throw std::runtime_error("the handler failed"); });
  ThreadQueue::Current().Post([&] { loop.quit(); });
  loop.exec();
  EXPECT_EQ(shown, "the handler failed");
  HostPorts().messageBox = nullptr;
}

TEST(QtHost, Ports_Should_BeFilledWhileItLivesAndEmptyAfterwards) {
  {
    const QtHost host;
    EXPECT_TRUE(HostPorts().messagePump);
    EXPECT_TRUE(HostPorts().messageBox);
    EXPECT_TRUE(HostPorts().systemColor);
    EXPECT_TRUE(HostPorts().readSetting);
    EXPECT_TRUE(HostPorts().writeSetting);
  }
  EXPECT_FALSE(HostPorts().messagePump);
  EXPECT_FALSE(HostPorts().messageBox);
  EXPECT_FALSE(HostPorts().systemColor);
  EXPECT_FALSE(HostPorts().readSetting);
  EXPECT_FALSE(HostPorts().writeSetting);
}

TEST(QtHost, PdfPageChooser_Should_BeTheDialogThatIsInstalled) {
  const PdfPageDialog before = InstalledPdfPageDialog();
  InstalledPdfPageDialog() = [](const std::string& pdfFile, std::string& pictureFile) {
    pictureFile = pdfFile + ".png";
    return 1;
  };
  {
    const QtHost host;
    std::string picture;
    ASSERT_TRUE(HostPorts().pdfPageChooser);
    EXPECT_EQ(HostPorts().pdfPageChooser("plan.pdf", picture), 1);
    EXPECT_EQ(picture, "plan.pdf.png");
  }
  EXPECT_FALSE(HostPorts().pdfPageChooser);
  InstalledPdfPageDialog() = nullptr;
  {
    const QtHost host;
    EXPECT_FALSE(HostPorts().pdfPageChooser);
  }
  InstalledPdfPageDialog() = before;
}

TEST(QtHost, Port_Should_StayTheHosts_When_TheHostFilledIt) {
  HostPorts().systemColor = [](uint32_t) { return 7u; };
  { const QtHost host; }
  EXPECT_EQ(GetSysColor(0), 7u);
  HostPorts().systemColor = nullptr;
}

TEST(QtHost, Second_Should_LeaveTheFirstServing) {
  const QtHost first;
  { const QtHost second; }
  EXPECT_TRUE(HostPorts().messagePump);
}

TEST(QtHost, Message_Should_WaitForTheNextHost_When_ThereIsNone) {
  bool ran = false;
  ThreadQueue::Current().Post([&] { ran = true; });
  QCoreApplication::processEvents();
  EXPECT_FALSE(ran);
  const QtHost host;
  QCoreApplication::processEvents();
  EXPECT_TRUE(ran);
}

TEST(QtHost, Making_Should_Throw_When_TheThreadIsNotTheApplications) {
  std::thread([] { EXPECT_THROW(QtHost(), Error); }).join();
  EXPECT_FALSE(HostPorts().messagePump);
}

/// Runs `action` inside the application's own loop.
void InApplication(const std::function<void()>& action) {
  QTimer::singleShot(0, [&] {
    action();
    QCoreApplication::quit();
  });
  QApplication::exec();
}

TEST_F(QtHostTest, ModalForm_Should_BeCanceled_When_TheHostQuits) {
  int answer = 0;
  InApplication([&] {
    TScaledForm form;
    test::WhenModal([](QWidget&) { QApplication::quit(); });
    answer = form.ShowModal();
  });
  EXPECT_EQ(answer, mrCancel);
}

TEST_F(QtHostTest, ModalForm_Should_BeCanceled_When_TheHostsLoopIsEnded) {
  int answer = 0;
  InApplication([&] {
    TScaledForm form;
    QTimer::singleShot(0, [] { QCoreApplication::exit(3); });
    answer = form.ShowModal();
  });
  EXPECT_EQ(answer, mrCancel);
}

TEST_F(QtHostTest, ModalForms_Should_AllBeCanceled_When_TheHostQuitsBehindTwo) {
  int outer = 0;
  int inner = 0;
  InApplication([&] {
    TScaledForm first;
    QTimer::singleShot(0, [&] {
      TScaledForm second;
      QTimer::singleShot(0, [] { QCoreApplication::exit(); });
      inner = second.ShowModal();
    });
    outer = first.ShowModal();
  });
  EXPECT_EQ(inner, mrCancel);
  EXPECT_EQ(outer, mrCancel);
}

TEST_F(QtHostTest, Host_Should_GoOn_When_ItsOnlyWindowWasTheDialog) {
  QApplication::setQuitOnLastWindowClosed(true);
  for (const bool byFrame : {false, true}) {
    bool wentOn = false;
    QTimer::singleShot(0, [&] {
      TScaledForm form;
      test::WhenModal([&](QWidget&) { byFrame ? static_cast<void>(form.close()) : form.accept(); });
      EXPECT_EQ(form.ShowModal(), byFrame ? mrCancel : mrOk);
      // Behind whatever the closing of the form has posted.
      QTimer::singleShot(50, [&] {
        wentOn = true;
        QCoreApplication::quit();
      });
    });
    QApplication::exec();
    EXPECT_TRUE(wentOn) << byFrame;
  }
  QApplication::setQuitOnLastWindowClosed(false);
}

TEST_F(QtHostTest, ModalForm_Should_Survive_When_TheHostDeletesItsWindow) {
  auto window = std::make_unique<QWidget>();
  window->show();
  window->activateWindow();
  QCoreApplication::processEvents();
  TScaledForm form;
  test::WhenModal([&](QWidget&) {
    window.reset();
    form.accept();
  });
  EXPECT_EQ(form.ShowModal(), mrOk);
}

}  // namespace
}  // namespace rasterkit
