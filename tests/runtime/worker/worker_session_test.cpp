#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/worker/worker_memory.h>
#include <rasterkit/runtime/worker/worker_program.h>
#include <rasterkit/runtime/worker/worker_session.h>

#include "tests/runtime/worker/child_count.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::detail {
namespace {

using testing::HasSubstr;

constexpr uint16_t kRequest = 100;
constexpr uint16_t kAnswer = 101;

class WorkerSessionTest : public testing::Test {
 protected:
  ~WorkerSessionTest() override {
    SetWorkerProgram("");
    EXPECT_TRUE(test::HasNoChildrenSoon());
    EXPECT_EQ(test::OpenFiles(), files_);
  }

  /// A program that behaves like its name; see fake_worker.cpp.
  void Use(const std::string& how) {
    const std::string program = folder_ / how;
    if (!std::filesystem::exists(program)) {
      std::filesystem::create_symlink(RASTERKIT_FAKE_WORKER, program);
    }
    SetWorkerProgram(program);
  }

  static WorkerMessage Ask(WorkerSession& session, size_t files = 0,
                           const WorkerTurn::KeepGoing& keepGoing = {}) {
    WorkerTurn turn(session, keepGoing);
    return turn.Ask({kRequest}, kAnswer, files);
  }

  /// What a fresh session with such a program throws.
  template <class Expected>
  std::string ErrorOf(const std::string& how, size_t files = 0) {
    Use(how);
    WorkerSession session(WorkerReader::pictures, "picture");
    try {
      Ask(session, files);
    } catch (const Expected& error) {
      return error.what();
    }
    return "no error";
  }

  /// What reading ten bytes of memory from such a program throws.
  std::string MemoryError(const std::string& how) {
    Use(how);
    WorkerSession session(WorkerReader::pictures, "picture");
    const WorkerMessage message = Ask(session, 1);
    std::array<uint8_t, 10> bytes{};
    try {
      ReadWorkerMemory(message.files[0], bytes);
    } catch (const FormatError& error) {
      return error.Reason();
    }
    return "no error";
  }

 private:
  test::TempFolder folder_;
  size_t files_ = test::OpenFiles();
};

TEST_F(WorkerSessionTest, Ask_Should_ReturnTheAnswer_When_TheWorkerIsGood) {
  Use("good");
  WorkerSession session(WorkerReader::pictures, "picture");
  {
    WorkerTurn turn(session, {});
    EXPECT_TRUE(turn.IsFresh());
    EXPECT_THAT(turn.Ask({kRequest}, kAnswer).body, testing::ElementsAre(1, 2, 3));
    EXPECT_TRUE(turn.Protection().filtersCalls);
  }
  WorkerTurn turn(session, {});
  EXPECT_FALSE(turn.IsFresh());
  EXPECT_THAT(turn.Ask({kRequest}, kAnswer).body, testing::ElementsAre(1, 2, 3));
}

TEST_F(WorkerSessionTest, Ask_Should_SayHowTheWorkerEnded_When_ItCrashes) {
  EXPECT_EQ(ErrorOf<FormatError>("abort"),
            "picture: the file is damaged: reading it ended in a failed check");
  EXPECT_EQ(ErrorOf<FormatError>("segmentation"),
            "picture: the file is damaged: reading it ended in an invalid memory access");
  EXPECT_EQ(ErrorOf<FormatError>("call"),
            "picture: the file is damaged: reading it ended in a forbidden system call");
  EXPECT_EQ(ErrorOf<FormatError>("exit"),
            "picture: the file is damaged: the process that reads it ended early");
  EXPECT_EQ(ErrorOf<FormatError>("deaf").substr(0, 28), "picture: the file is damaged");
  EXPECT_THAT(ErrorOf<LimitError>("killed"), HasSubstr("it may be out of memory"));
  EXPECT_THAT(ErrorOf<TimeLimitError>("time"), HasSubstr("the time limit"));
}

TEST_F(WorkerSessionTest, Ask_Should_Refuse_When_TheHeaderLies) {
  const size_t files = test::OpenFiles();
  for (const char* how :
       {"magic", "version", "kind", "length", "count", "short", "long", "empty-with-files",
        "ready-lies", "start-noise", "error-class", "error-text"}) {
    EXPECT_THAT(ErrorOf<FormatError>(how), HasSubstr("sent an invalid message")) << how;
    EXPECT_TRUE(test::HasNoChildrenSoon());
    EXPECT_EQ(test::OpenFiles(), files) << how;
  }
  EXPECT_NE(ErrorOf<FormatError>("empty"), "no error");
}

TEST_F(WorkerSessionTest, Ask_Should_Refuse_When_TheNumberOfFilesIsWrong) {
  EXPECT_THAT(ErrorOf<FormatError>("no-file", 1), HasSubstr("invalid message"));
  EXPECT_THAT(ErrorOf<FormatError>("one-file", 0), HasSubstr("invalid message"));
  EXPECT_THAT(ErrorOf<FormatError>("two-files", 1), HasSubstr("invalid message"));
  EXPECT_THAT(ErrorOf<FormatError>("many-files", 0), HasSubstr("invalid message"));
  EXPECT_THAT(ErrorOf<FormatError>("secret-files", 0), HasSubstr("invalid message"));
}

TEST_F(WorkerSessionTest, ReadWorkerMemory_Should_TakeIt_When_ItHasTheSize) {
  EXPECT_EQ(MemoryError("one-file"), "no error");
}

TEST_F(WorkerSessionTest, ReadWorkerMemory_Should_Refuse_When_MemoryIsNotAsAgreed) {
  EXPECT_THAT(MemoryError("memory-small"), HasSubstr("memory is too small"));
  EXPECT_THAT(MemoryError("memory-large"), HasSubstr("memory is too large"));
  EXPECT_THAT(MemoryError("memory-no-memory"), HasSubstr("a file is not sealable memory"));
  EXPECT_THAT(MemoryError("memory-unsealable"), HasSubstr("memory can still be changed"));
  EXPECT_THAT(MemoryError("memory-mapped"), HasSubstr("memory can still be changed"));
}

TEST_F(WorkerSessionTest, Ask_Should_ThrowTheWorkersError_When_ItReportsOne) {
  EXPECT_EQ(ErrorOf<RangeError>("error-range"), "too far");
  EXPECT_EQ(ErrorOf<FormatError>("error-controls"), "a\uFFFD[2Jb\uFFFD");
  EXPECT_EQ(ErrorOf<UnsupportedError>("start-failed"), "not installed");
  EXPECT_THAT(ErrorOf<LimitError>("error-memory"), HasSubstr("the limit of 4096 MiB"));
  EXPECT_NE(ErrorOf<std::bad_alloc>("error-bad-alloc"), "no error");
}

TEST_F(WorkerSessionTest, Ask_Should_KeepTheWorker_When_ItReportsAnError) {
  Use("error-range");
  WorkerSession session(WorkerReader::pictures, "picture");
  EXPECT_THROW(Ask(session), RangeError);
  EXPECT_THROW(Ask(session), RangeError);
  WorkerTurn turn(session, {});
  EXPECT_FALSE(turn.IsFresh());
}

TEST_F(WorkerSessionTest, Ask_Should_StartAnotherWorker_When_OneCrashed) {
  Use("abort");
  WorkerSession session(WorkerReader::pictures, "picture");
  EXPECT_THROW(Ask(session), FormatError);
  Use("good");
  EXPECT_EQ(Ask(session).body.size(), 3u);
}

TEST_F(WorkerSessionTest, Ask_Should_SendNothing_When_TheWorkerIsNotLockedIn) {
  EXPECT_EQ(ErrorOf<Error>("ready-unfiltered"),
            "picture: the process that reads the file is not locked in");
  Use("ready-late");
  WorkerSession session(WorkerReader::pictures, "picture");
  EXPECT_EQ(Ask(session).body.size(), 3u);
}

TEST_F(WorkerSessionTest, Ask_Should_Throw_When_ALivingWorkerTakesNoRequest) {
  // Else the call would never end.
  Limits limits;
  limits.seconds = 20;
  const LimitsScope scope(limits);
  EXPECT_EQ(ErrorOf<Error>("closed"), "picture: the process that reads the file takes no requests");
}

TEST_F(WorkerSessionTest, Turn_Should_Throw_When_TheWorkerEndsAtOnce) {
  EXPECT_NE(ErrorOf<FormatError>("start-exit"), "no error");
}

TEST_F(WorkerSessionTest, Turn_Should_NameTheProgram_When_ItCannotBeStarted) {
  const test::TempFolder folder;
  const std::string text = folder.Write("text", "no program");
  SetWorkerProgram(text);
  WorkerSession session(WorkerReader::pictures, "picture");
  try {
    Ask(session);
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Reason(), text + " cannot be started: Permission denied");
  }
  SetWorkerProgram("/nowhere/worker");
  EXPECT_THROW(Ask(session), UnsupportedError);
}

TEST_F(WorkerSessionTest, Ask_Should_EndTheWorker_When_Canceled) {
  Use("hang");
  WorkerSession session(WorkerReader::pictures, "picture");
  int questions = 0;
  EXPECT_THROW(Ask(session, 0, [&] { return ++questions < 3; }), WorkerCanceled);
  EXPECT_TRUE(test::HasNoChildrenSoon());
  const auto throwing = []() -> bool { throw std::domain_error("of the host"); };
  EXPECT_THROW(Ask(session, 0, throwing), std::domain_error);
  EXPECT_TRUE(test::HasNoChildrenSoon());
}

TEST_F(WorkerSessionTest, Ask_Should_EndTheWorker_When_TheTimeIsOver) {
  Use("hang");
  WorkerSession session(WorkerReader::pictures, "picture");
  Limits limits;
  limits.seconds = 0.05;
  const LimitsScope scope(limits);
  EXPECT_THROW(Ask(session), TimeLimitError);
  EXPECT_TRUE(test::HasNoChildrenSoon());
}

/// A copy of this process may keep the worker's end of the socket open: the end of the socket says
/// nothing then.
TEST_F(WorkerSessionTest, Wait_Should_End_When_SomebodyElseKeepsTheSocket) {
  Use("send-socket");
  WorkerSession session(WorkerReader::pictures, "picture");
  const WorkerMessage socket = Ask(session, 1);
  EXPECT_THROW(Ask(session, 1), FormatError);
}

TEST_F(WorkerSessionTest, Ask_Should_NotBelieveTheNextAnswer_When_TheWorkerSendsTwo) {
  Use("chatty");
  WorkerSession session(WorkerReader::pictures, "picture");
  EXPECT_EQ(Ask(session).body.size(), 3u);
  // The surplus answer is of the expected kind; whoever reads its body checks it.
  EXPECT_EQ(Ask(session).body.size(), 3u);
}

TEST_F(WorkerSessionTest, Worker_Should_HaveNothingOfTheHost_When_Started) {
  Use("good");
  const SystemFile secret = OpenAt(AT_FDCWD, "/dev/null", 0);
  WorkerSession session(WorkerReader::pictures, "picture");
  Ask(session);
  const std::vector<int> children = test::Children();
  ASSERT_EQ(children.size(), 1u);
  const std::string folder = "/proc/" + std::to_string(children[0]);
  std::set<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(folder + "/fd")) {
    names.insert(file.path().filename());
  }
  EXPECT_EQ(names, (std::set<std::string>{"0", "1", "2", "3"}));
  std::ifstream stat(folder + "/stat");
  std::string number, name, state, parent, group, sessionOfTerminal;
  stat >> number >> name >> state >> parent >> group >> sessionOfTerminal;
  EXPECT_EQ(sessionOfTerminal, number);
}

TEST_F(WorkerSessionTest, Start_Should_LeaveSignalsAlone_When_TheHostHasHandlers) {
  Use("good");
  std::signal(SIGCHLD, [](int) {});
  std::signal(SIGPIPE, SIG_DFL);
  sigset_t mask;
  sigemptyset(&mask);
  sigaddset(&mask, SIGUSR1);
  pthread_sigmask(SIG_SETMASK, &mask, nullptr);
  struct sigaction child {
  }, pipe{};
  sigaction(SIGCHLD, nullptr, &child);
  {
    WorkerSession session(WorkerReader::pictures, "picture");
    Ask(session);
    std::ifstream status("/proc/" + std::to_string(test::Children().at(0)) + "/status");
    std::string line;
    while (std::getline(status, line)) {
      if (line.starts_with("SigBlk:")) {
        EXPECT_EQ(line, "SigBlk:\t0000000000000000");
      }
    }
  }
  struct sigaction after {};
  sigaction(SIGCHLD, nullptr, &after);
  EXPECT_EQ(after.sa_handler, child.sa_handler);
  sigaction(SIGPIPE, nullptr, &pipe);
  EXPECT_EQ(pipe.sa_handler, SIG_DFL);
  sigset_t maskAfter;
  pthread_sigmask(SIG_SETMASK, nullptr, &maskAfter);
  EXPECT_EQ(sigismember(&maskAfter, SIGUSR1), 1);
  EXPECT_EQ(sigismember(&maskAfter, SIGTERM), 0);
  sigemptyset(&mask);
  pthread_sigmask(SIG_SETMASK, &mask, nullptr);
  std::signal(SIGCHLD, SIG_DFL);
}

TEST_F(WorkerSessionTest, Sessions_Should_AllWork_When_ThereAreManyOnManyThreads) {
  Use("good");
  std::vector<std::thread> threads;
  std::atomic<int> good = 0;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      WorkerSession first(WorkerReader::pictures, "picture");
      WorkerSession second(WorkerReader::pictures, "picture");
      for (int round = 0; round < 5; ++round) {
        if (Ask(first).body.size() == 3) ++good;
        if (Ask(second).body.size() == 3) ++good;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, 80);
}

TEST_F(WorkerSessionTest, Sessions_Should_NotWaitForThemselves_When_TurnsNest) {
  Use("good");
  std::vector<std::unique_ptr<WorkerSession>> sessions;
  std::vector<std::unique_ptr<WorkerTurn>> turns;
  for (size_t i = 0; i < std::thread::hardware_concurrency() + 2; ++i) {
    sessions.push_back(std::make_unique<WorkerSession>(WorkerReader::pictures, "picture"));
    turns.push_back(std::make_unique<WorkerTurn>(*sessions.back(), WorkerTurn::KeepGoing()));
    EXPECT_EQ(turns.back()->Ask({kRequest}, kAnswer).body.size(), 3u);
  }
  turns.clear();
}

}  // namespace
}  // namespace rasterkit::detail
