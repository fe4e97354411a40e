#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/bands/averaged_form.h>
#include <rasterkit/bands/stage/band.h>
#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// What becomes of pixels before new ones are taken or averaged from them: another format, room for
/// a fill. Each pixel changes alone, and the change follows from the kind of the pixels.
class PreparedPixels {
 public:
  /// For a picture that is resized. Throws what `FormForResize` throws.
  static PreparedPixels ForResize(const Pixels& like, Sides from, Sides to, Filter filter);
  /// For a picture that is turned. Throws what `FormForTurn` and `PrepareFill` throw.
  static PreparedPixels ForTurn(const Pixels& like, const Resampling& how);

  AveragedForm Form() const { return form_; }
  /// A picture of one pixel of the prepared kind.
  const Pixels& Like() const { return like_; }
  /// The bytes of the fill's pixel, a packed pixel's value; of all planes one after the other.
  /// Empty for a picture that is resized.
  const std::vector<uint8_t>& Fill() const { return fill_; }
  /// Means of these pixels are numbers that may be missing.
  bool HasNumbers() const { return hasNumbers_; }
  /// False if pixels stay as they are.
  bool Changes() const { return changes_; }
  /// Prepares pixels of the kind that this was made for.
  Pixels Apply(Pixels pixels) const;

 private:
  PreparedPixels() = default;

  AveragedForm form_ = AveragedForm::none;
  bool isTurn_ = false, hasNumbers_ = false, changes_ = false;
  Resampling how_;
  Pixels like_;
  std::vector<uint8_t> fill_;
};

}  // namespace rasterkit::detail
