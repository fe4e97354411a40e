#pragma once

#include <QObject>
#include <QTimer>
#include <atomic>
#include <memory>

#include <rasterkit/runtime/threads/thread_queue.h>

namespace rasterkit {

/// Runs the queue of the thread that creates it from every running Qt event loop: the
/// application's, a modal dialog's, a nested one. So termination events and timers arrive while no
/// code waits for them. Free while the queue is empty.
class QueueRunner : public QObject {
 public:
  QueueRunner();
  ~QueueRunner() override;

 protected:
  bool event(QEvent* event) override;

 private:
  void Wake();
  void Run();
  void AwaitNextTimer();

  const std::shared_ptr<ThreadQueue> queue_;
  QTimer nextTimer_;
  /// An event is already posted; one is enough.
  std::atomic<bool> isAwake_{false};
};

}  // namespace rasterkit
