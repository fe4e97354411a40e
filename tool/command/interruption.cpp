#include "tool/command/interruption.h"

#include <atomic>
#include <csignal>
#include <exception>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <thread>

#include <semaphore.h>
#include <unistd.h>

#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/temporary_names.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_job.h>

#include "tool/command/exit_code.h"

namespace rasterkit::tool {
namespace {

std::atomic<bool> interrupted = false;
std::atomic<bool> isSaid = false;
std::atomic<int> waits = 0;
std::atomic<int> outputs = 0;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "signal handlers must not wait for a lock");

/// Leads from the signal handler, which may do next to nothing, to a thread that may do anything.
class Wake {
 public:
  Wake() { sem_init(&semaphore_, 0, 0); }

  /// Safe in a signal handler.
  void Post() { sem_post(&semaphore_); }

  std::stop_token Token() {
    std::call_once(started_, [this] { Start(); });
    return source_.get_token();
  }

 private:
  /// Without a thread the work ends where StopIfInterrupted is called.
  void Start() {
    try {
      std::thread([this] {
        while (sem_wait(&semaphore_) != 0) {
        }
        source_.request_stop();
      }).detach();
    } catch (const std::exception&) {
    }
  }

  sem_t semaphore_{};
  std::once_flag started_;
  std::stop_source source_;
};

/// Never destroyed: its thread waits until the process ends.
Wake& wake = *new Wake;

/// Ends the process at once, using only functions that are safe in a signal handler.
[[noreturn]] void EndAtOnce() {
  RemoveTemporaryFiles();
  SayInterrupted();
  _exit(exitInterrupted);
}

void OnSecondInterrupt(int) {
  EndAtOnce();
}

void OnInterrupt(int signalNumber) {
  interrupted = true;
  wake.Post();
  std::signal(signalNumber, OnSecondInterrupt);
  if (waits > 0 && outputs == 0) EndAtOnce();
}

bool IsPipeOrDevice(const std::string& file) {
  std::error_code error;
  const auto status = std::filesystem::status(ToPath(file), error);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
         !std::filesystem::is_directory(status);
}

}  // namespace

void CatchInterruption() {
  for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
    // A process that starts with the signal ignored (in the background) keeps ignoring it.
    if (std::signal(signalNumber, OnInterrupt) == SIG_IGN) std::signal(signalNumber, SIG_IGN);
  }
  std::signal(SIGXFSZ, SIG_IGN);
}

std::stop_token InterruptionToken() {
  return wake.Token();
}

bool IsInterrupted() {
  return interrupted;
}

/// Uses only functions that are safe in a signal handler.
void SayInterrupted() {
  if (isSaid.exchange(true)) return;
  constexpr std::string_view kText = "rasterkit: interrupted\n";
  [[maybe_unused]] const auto ignored = write(STDERR_FILENO, kText.data(), kText.size());
}

void StopIfInterrupted() {
  if (IsInterrupted()) throw Failure(exitInterrupted, "interrupted");
  RequireTime();
  RequireMemoryOfJob();
}

bool ContinueUnlessInterrupted() {
  StopIfInterrupted();
  return true;
}

InterruptibleWait::InterruptibleWait() {
  ++waits;
  if (!IsInterrupted()) return;
  // The request came before this wait began.
  --waits;
  StopIfInterrupted();
}

InterruptibleWait::~InterruptibleWait() {
  --waits;
}

InterruptibleInput::InterruptibleInput(const std::string& file) {
  if (IsPipeOrDevice(file)) wait_.emplace();
}

WholeOutput::WholeOutput() {
  ++outputs;
}

WholeOutput::~WholeOutput() {
  // Another thread may also be waiting.
  if (--outputs == 0 && interrupted && waits > 0) EndAtOnce();
}

}  // namespace rasterkit::tool
