#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
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
  /// Reading comes to an end soon; how long drawing takes, nobody knows.
  enum class Kind { reading, drawing };

  PdfThread();
  ~PdfThread();
  PdfThread(const PdfThread&) = delete;
  PdfThread& operator=(const PdfThread&) = delete;

  /// Adds a job, which must not throw. It owns what it needs: nobody may be there any more when
  /// it runs.
  void Post(Kind kind, Job job);

  /// To be asked now and then while a job is waited for. True once a job that only reads has used
  /// processor time for long without reading a byte: some damaged files send the engine round in
  /// circles. Nothing can stop it then; see IsEngineStuck.
  bool GoesInCircles();

  /// A file holds the engine for ever: nothing else can be read or drawn in this process any more,
  /// and the process's end does not wait.
  static bool IsEngineStuck();

 private:
  struct State;
  static void Run(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;
  std::thread thread_;
  /// When a byte was last seen to be read: how many reads there were, and what time the thread had
  /// used by then.
  struct Reading {
    int64_t reads;
    double seconds;
  };
  std::optional<Reading> lastReading_;
};

}  // namespace rasterkit
