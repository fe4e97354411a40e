#pragma once

#include <string>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/pictures/run.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

/// One call that reads pixels: its limits, its cancellation, its threads and its progress. On the
/// thread of the call.
class RunScope {
 public:
  explicit RunScope(const Run& run);
  RunScope(const RunScope&) = delete;
  RunScope& operator=(const RunScope&) = delete;

  int Threads() const { return threads_; }
  /// The scratch file goes beside this file unless the run says otherwise.
  void SetTarget(const std::string& file);
  /// How pictures flow in this call.
  FlowSettings Flow() const;
  /// The next part of the work, up to `end` of the whole. Within it, progress follows the checks of
  /// time, which come once for each of `rows` rows or for several.
  void Begin(double end, int rows);
  /// The run of stages in this part: they report their progress themselves.
  StageRun Stages();
  void Finish() { Report(1); }

 private:
  void Report(double done);
  void Check();

  const Run& run_;
  int threads_;
  std::string scratchFolder_;
  double from_ = 0, end_ = 1, reported_ = -1;
  double checks_ = 0, rows_ = 0;
  bool isReporting_ = false;
  const LimitsScope scope_;
};

}  // namespace rasterkit::detail
