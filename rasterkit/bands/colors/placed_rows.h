#pragma once

#include <memory>

#include <rasterkit/bands/stage/stage.h>

namespace rasterkit::detail {

/// Rows that a stage makes of a picture that is held, some at a time. Where the stage does not work
/// in parts, its whole result is held.
class PlacedRows {
 public:
  PlacedRows(Pixels source, std::unique_ptr<Stage> stage, const StageRun& run);

  /// Rows of the result. Several threads may ask.
  Pixels Rows(int first, int count) const;

 private:
  Band source_;
  const std::unique_ptr<Stage> stage_;
  std::unique_ptr<BandWork> work_;
};

}  // namespace rasterkit::detail
