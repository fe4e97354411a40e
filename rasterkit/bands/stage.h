#pragma once

#include <functional>
#include <memory>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Rows `first` to `first + count - 1`.
struct RowRange {
  int first = 0, count = 0;
  friend bool operator==(const RowRange&, const RowRange&) = default;
};

/// How a stage runs.
struct StageRun {
  /// At least 1. No result depends on it.
  int threads = 1;
  /// Called on the calling thread with 0 to 1, never going back; may throw CanceledError.
  std::function<void(double)> progress;
};

/// Makes the rows of one step from the rows of the step before.
class RASTERKIT_EXPORT Stage {
 public:
  virtual ~Stage() = default;
  /// The rows of the source that rows of the result need.
  virtual RowRange Needs(RowRange target) const = 0;
  /// Makes the whole result from the whole source. Losses that show only in the pixels (colors that
  /// a palette has no room for) are added to `changes`.
  virtual Pixels Make(Pixels source, const StageRun& run, Changes& changes) const = 0;
};

}  // namespace rasterkit
