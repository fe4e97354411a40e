#pragma once

#include <memory>
#include <string>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/number_stretch.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/raster/samples.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Makes a picture to look at of samples (see VisiblePixels), some rows at a time.
///
/// First come passes over all rows, as long as `NeedsPass`; then rows can be shown in any order.
class RASTERKIT_EXPORT PixelView {
 public:
  /// The rows of `like` have no meaning. Throws UnsupportedError for bands that are no colors.
  PixelView(const Samples& like, const std::string& noData, const NumberStretch& stretch);
  ~PixelView();

  bool NeedsPass() const;
  /// Sees rows `first` to `last - 1`. Several threads may see different rows.
  void Look(const Samples& rows, int first, int last);
  void EndPass();

  /// A small raster of the kind that is shown.
  const Raster& Like() const;
  /// Shows `count` rows from row `from` on as those of `target` from row `to` on, with zeros after
  /// their last pixels. Several threads may show different rows.
  void Show(const Samples& rows, int from, int count, Raster& target, int to) const;
  /// Adds what this loses, and which numbers are shown black and white. After the passes.
  void Report(Changes& changes) const;

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit
