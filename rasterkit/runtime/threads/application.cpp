#include <exception>

#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/runtime/threads/thread_queue.h>

namespace rasterkit {
namespace {

using Clock = ThreadQueue::Clock;

/// True once in each interval of the calling thread.
bool IsTimeToPump() {
  thread_local Clock::time_point next{};
  const Clock::time_point now = Clock::now();
  if (now < next) return false;
  next = now + TApplication::kPumpInterval;
  return true;
}

void Report(const char* text) noexcept {
  try {
    ShowMessage(text);
  } catch (...) {
    // The message box failed as well.
  }
}

}  // namespace

TApplication Application;

void TApplication::ProcessMessages() {
  ThreadQueue* queue = ThreadQueue::Existing();
  if (queue == nullptr) return;
  if (queue->NeedsAttention()) queue->Dispatch();
  if (HostPorts().messagePump && IsTimeToPump()) Guard(HostPorts().messagePump);
}

void TApplication::Guard(const std::function<void()>& handler) noexcept {
  try {
    handler();
  } catch (...) {
    HandleException();
  }
}

void TApplication::HandleException() noexcept {
  try {
    throw;
  } catch (const std::exception& error) {
    Report(error.what());
  } catch (...) {
    Report("an unknown error");
  }
}

}  // namespace rasterkit
