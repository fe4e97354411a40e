#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <optional>
#include <utility>

#include <fmt/format.h>
#include <poll.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_errors.h>
#include <rasterkit/runtime/worker/worker_process.h>
#include <rasterkit/runtime/worker/worker_program.h>
#include <rasterkit/runtime/worker/worker_session.h>
#include <rasterkit/runtime/worker/worker_slots.h>

namespace rasterkit::detail {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kBetweenQuestions{10};

/// Time in which a process that closed its socket ends by itself, so that its reason is known.
constexpr int kEndsByItselfMilliseconds = 1000;

std::string SignalReason(int signal) {
  switch (signal) {
    case SIGSEGV:
    case SIGBUS:
      return "an invalid memory access";
    case SIGABRT:
    case SIGILL:
    case SIGTRAP:
      return "a failed check";
    case SIGFPE:
      return "an arithmetic error";
    case SIGSYS:
      return "a forbidden system call";
    default:
      return fmt::format("signal {}", signal);
  }
}

bool WaitReadable(int handle, int milliseconds) {
  pollfd wait{handle, POLLIN, 0};
  return poll(&wait, 1, milliseconds) > 0;
}

/// Waits for a message or the end of the process. A copy of this process, made by fork while the
/// worker started, can keep the worker's end of the socket open after the worker ended.
bool WaitForNews(const WorkerProcess& process, int milliseconds) {
  std::array<pollfd, 2> waits{pollfd{process.Channel().Handle(), POLLIN, 0},
                              pollfd{process.EndHandle(), POLLIN, 0}};
  return poll(waits.data(), waits.size(), milliseconds) > 0;
}

}  // namespace

/// Asks the caller every 10 ms whether to go on.
class Questions {
 public:
  explicit Questions(WorkerTurn::KeepGoing keepGoing) : keepGoing_(std::move(keepGoing)) {}

  /// Until the next question, rounded up.
  int MillisecondsLeft() const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next_ - Clock::now());
    return std::max(static_cast<int>(left.count()), 0);
  }
  /// Throws WorkerCanceled, TimeLimitError or what the callback throws.
  void AskIfDue() {
    if (Clock::now() < next_) return;
    RequireTime();
    if (keepGoing_ && !keepGoing_()) throw WorkerCanceled();
    next_ = Clock::now() + kBetweenQuestions;
  }

 private:
  WorkerTurn::KeepGoing keepGoing_;
  Clock::time_point next_ = Clock::now() + kBetweenQuestions;
};

struct WorkerSession::State : WorkerHolder {
  State(WorkerReader reader, std::string what, ErrorHook onError)
      : reader(reader), what(std::move(what)), onError(std::move(onError)) {}

  void GiveUpWorker() override { End(); }
  ProcessEnd End() {
    if (!process) return {};
    const ProcessEnd end = process->End();
    process.reset();
    return end;
  }
  [[noreturn]] void ThrowEnded();
  [[noreturn]] void Throw(const WorkerError& error);
  void Send(const WorkerMessage& message);
  /// Returns the next message of the worker.
  WorkerMessage Wait(Questions& questions);
  WorkerMessage ReceiveOne();
  /// Checks the first message of the worker. No file is sent before: the worker must be locked in.
  void GetReady(Questions& questions);

  const WorkerReader reader;
  const std::string what;
  const ErrorHook onError;
  std::optional<WorkerProcess> process;
  WorkerSetup setup;
  /// Nothing until the first message arrived.
  std::optional<WorkerProtection> protection;
};

/// Throws the error for a worker that ended without an answer.
void WorkerSession::State::ThrowEnded() {
  const bool endsByItself = WaitReadable(process->EndHandle(), kEndsByItselfMilliseconds);
  ProcessEnd end = End();
  if (!endsByItself) end = {};
  if (end.kind == ProcessEnd::Kind::signaled && end.value == SIGXCPU) {
    throw TimeLimitError(
        fmt::format("{}: the time limit of {} seconds is over", what, setup.limits.seconds));
  }
  if (end.kind == ProcessEnd::Kind::signaled && end.value == SIGKILL) {
    throw LimitError(what +
                     ": the system ended the process that reads the file; it may be out of "
                     "memory");
  }
  if (end.kind == ProcessEnd::Kind::signaled) {
    throw FormatError(what + ": the file is damaged: reading it ended in " +
                      SignalReason(end.value));
  }
  throw FormatError(what + ": the file is damaged: the process that reads it ended early");
}

/// Throws the error that the worker reported.
void WorkerSession::State::Throw(const WorkerError& error) {
  if (error.errorClass == WorkerErrorClass::outOfMemory) {
    End();
    const bool isPicture = setup.limits.pictureBytes <= setup.limits.processBytes;
    throw LimitError(
        isPicture ? LimitKind::pictureBytes : LimitKind::processBytes,
        fmt::format("{}: reading the file takes more memory than the limit of {} MiB", what,
                    std::min(setup.limits.pictureBytes, setup.limits.processBytes) >> 20));
  }
  if (onError) onError(error);
  ThrowWorkerError(error);
}

/// Sends a message. If the worker has ended, what it said before is the reason, and the wait for
/// its answer finds it. If it lives, it would wait for the message, and the host for the answer.
void WorkerSession::State::Send(const WorkerMessage& message) {
  if (process->Channel().Send(message)) return;
  if (WaitReadable(process->EndHandle(), kEndsByItselfMilliseconds)) return;
  End();
  throw Error(what + ": the process that reads the file takes no requests");
}

WorkerMessage WorkerSession::State::ReceiveOne() {
  std::optional<WorkerMessage> message = process->Channel().Receive();
  if (!message) ThrowEnded();
  return std::move(*message);
}

WorkerMessage WorkerSession::State::Wait(Questions& questions) {
  while (!WaitForNews(*process, questions.MillisecondsLeft())) questions.AskIfDue();
  // Also if every answer comes at once: there may be many.
  questions.AskIfDue();
  // What the process sent before it ended comes first.
  if (!WaitReadable(process->Channel().Handle(), 0)) ThrowEnded();
  return ReceiveOne();
}

void WorkerSession::State::GetReady(Questions& questions) {
  if (protection) return;
  const WorkerMessage first = Wait(questions);
  if (first.kind == kWorkerFailed) {
    const WorkerError error = ReadFailed(first);
    End();
    Throw(error);
  }
  const WorkerProtection ready = ReadReady(first);
  if (!ready.filtersCalls) throw Error(what + ": the process that reads the file is not locked in");
  protection = ready;
}

WorkerSession::WorkerSession(WorkerReader reader, std::string what, ErrorHook onError)
    : state_(std::make_unique<State>(reader, std::move(what), std::move(onError))) {}

WorkerSession::~WorkerSession() {
  WorkerSlots::Instance().Leave(*state_);
  state_->End();
}

struct WorkerTurn::State {
  WorkerSession::State& session;
  Questions questions;
  bool isFresh = false;
};

WorkerTurn::WorkerTurn(WorkerSession& session, KeepGoing keepGoing)
    : state_(std::make_unique<State>(State{*session.state_, Questions(std::move(keepGoing))})) {
  WorkerSession::State& own = state_->session;
  // Before the wait: nothing to wait for without it.
  const std::string program = WorkerProgram();
  while (!WorkerSlots::Instance().TryUse(own)) {
    state_->questions.AskIfDue();
  }
  try {
    const size_t most = WorkerSlots::Instance().Places();
    const WorkerSetup setup{own.reader, LimitsOfWorker(CurrentLimits(), most)};
    const bool isRunning = own.process && !WaitReadable(own.process->EndHandle(), 0);
    if (isRunning && own.setup == setup) return;
    own.End();
    own.protection.reset();
    own.setup = setup;
    own.process.emplace(program);
    state_->isFresh = true;
    own.Send(SetupMessage(setup));
  } catch (...) {
    own.End();
    WorkerSlots::Instance().Leave(own);
    throw;
  }
}

WorkerTurn::~WorkerTurn() {
  WorkerSession::State& own = state_->session;
  if (own.process) {
    WorkerSlots::Instance().Rest(own);
  } else {
    WorkerSlots::Instance().Leave(own);
  }
}

bool WorkerTurn::IsFresh() const {
  return state_->isFresh;
}

WorkerMessage WorkerTurn::Ask(const WorkerMessage& request, uint16_t answer, size_t files) {
  WorkerSession::State& own = state_->session;
  if (!own.process) throw Error(own.what + ": the process that reads the file has ended");
  std::optional<WorkerError> reported;
  try {
    own.GetReady(state_->questions);
    own.Send(request);
    WorkerMessage message = own.Wait(state_->questions);
    if (message.kind != kWorkerFailed) {
      if (message.kind == answer && message.files.size() == files) return message;
      ThrowBadMessage("it is not the answer");
    }
    reported = ReadFailed(message);
  } catch (...) {
    own.End();
    throw;
  }
  own.Throw(*reported);
}

WorkerProtection WorkerTurn::Protection() {
  WorkerSession::State& own = state_->session;
  try {
    own.GetReady(state_->questions);
  } catch (...) {
    own.End();
    throw;
  }
  return *own.protection;
}

}  // namespace rasterkit::detail
