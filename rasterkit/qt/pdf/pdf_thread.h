#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

namespace rasterkit {

class PdfEngine;

/// A thread with a PdfEngine that runs one job after the other.
///
/// A page that is being drawn cannot be canceled. If this object is destroyed meanwhile, the thread
/// finishes the job alone; the process waits for it at exit, so that the engine is not destroyed
/// while it runs.
class PdfThread {
 public:
  using Job = std::function<void(PdfEngine& engine)>;
  /// Reading ends soon; drawing may take any time.
  enum class Kind { reading, drawing };

  PdfThread();
  ~PdfThread();
  PdfThread(const PdfThread&) = delete;
  PdfThread& operator=(const PdfThread&) = delete;

  /// Adds a job, which must not throw. It must own its data: the caller may be gone when it runs.
  void Post(Kind kind, Job job);

  /// Call regularly while waiting for a job. Returns true once a reading job has used much
  /// processor time without reading a byte: some damaged files send the engine into an endless
  /// loop, which nothing can stop; see IsEngineStuck.
  bool GoesInCircles();

  /// True if a file blocks the engine forever: no other file can be read or drawn in this process,
  /// and the exit of the process does not wait.
  static bool IsEngineStuck();

 private:
  struct State;
  static void Run(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;
  std::thread thread_;
  /// The last progress in reading: the number of reads, and the processor time of the thread by
  /// then.
  struct Reading {
    int64_t reads;
    double seconds;
  };
  std::optional<Reading> lastReading_;
};

}  // namespace rasterkit
