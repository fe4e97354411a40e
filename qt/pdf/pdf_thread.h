#pragma once

#include <functional>
#include <memory>
#include <thread>

namespace rasterkit {

class PdfEngine;

/// A thread with a PdfEngine, which does one job after the other.
///
/// A page that is being drawn cannot be stopped. When this object ends meanwhile, the thread goes
/// on by itself and ends after the job; the process waits for that at its own end, so that the
/// engine is not torn down under it.
class PdfThread {
 public:
  using Job = std::function<void(PdfEngine& engine)>;

  PdfThread();
  ~PdfThread();
  PdfThread(const PdfThread&) = delete;
  PdfThread& operator=(const PdfThread&) = delete;

  /// Adds a job, which must not throw. It owns what it needs: nobody may be there any more when
  /// it runs.
  void Post(Job job);

 private:
  struct State;
  static void Run(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;
  std::thread thread_;
};

}  // namespace rasterkit
