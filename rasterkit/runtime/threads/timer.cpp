#include <rasterkit/runtime/threads/timer.h>

namespace rasterkit {

TTimer::TTimer() : queue_(ThreadQueue::Share()), entry_(std::make_shared<ThreadQueue::Timer>()) {
  entry_->tick = [this] { Tick(); };
  Restart();
}

TTimer::~TTimer() {
  queue_->RemoveTimer(entry_);
}

void TTimer::SetInterval(unsigned milliseconds) {
  interval_ = milliseconds;
  Restart();
}

void TTimer::SetEnabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  Restart();
}

void TTimer::Restart() {
  queue_->RemoveTimer(entry_);
  entry_->interval = std::chrono::milliseconds(interval_);
  if (enabled_ && interval_ > 0) queue_->AddTimer(entry_);
}

void TTimer::Tick() {
  // A copy, as the handler may destroy the timer and with it the function that runs.
  const auto handler = OnTimer;
  if (handler) handler(*this);
}

}  // namespace rasterkit
