#include <QCoreApplication>
#include <QEvent>

#include <rasterkit/qt/host/queue_runner.h>

namespace rasterkit {
namespace {

const auto kWakeEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

}  // namespace

QueueRunner::QueueRunner() : queue_(ThreadQueue::Share()) {
  nextTimer_.setSingleShot(true);
  nextTimer_.setTimerType(Qt::PreciseTimer);
  connect(&nextTimer_, &QTimer::timeout, this, &QueueRunner::Run);
  queue_->SetWakeUp([this] { Wake(); });
  // Handles what was queued before this object existed.
  Wake();
}

QueueRunner::~QueueRunner() {
  queue_->SetWakeUp({});
}

bool QueueRunner::event(QEvent* event) {
  if (event->type() != kWakeEvent) return QObject::event(event);
  isAwake_ = false;
  Run();
  return true;
}

/// Called on any thread.
void QueueRunner::Wake() {
  if (!isAwake_.exchange(true)) QCoreApplication::postEvent(this, new QEvent(kWakeEvent));
}

void QueueRunner::Run() {
  queue_->Dispatch();
  AwaitNextTimer();
}

void QueueRunner::AwaitNextTimer() {
  const auto left = queue_->TimeToNextTimer();
  if (left) {
    nextTimer_.start(*left);
  } else {
    nextTimer_.stop();
  }
}

}  // namespace rasterkit
