#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include <rasterkit/bands/stage/band_work.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// Makes a row of the result from the same row of the source. `scratch` has kScratchBytes for each
/// pixel. Bytes after the last pixel need not be written.
using RowRule = std::function<void(const uint8_t* source, uint8_t* target, uint8_t* scratch)>;
inline constexpr size_t kScratchBytes = 8;

/// Sets what stands between the last pixel of a row and the next row to 0.
void ClearRowEnd(Raster& raster, int y);

/// The work of a change of rasters in which each row depends on the same row of the source. Derived
/// works may look at rows first, and then set the rule.
class RuleWork : public BandWork {
 public:
  RuleWork(Raster like, Sides size, RowRule rule);

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return size_; }
  BandRect Needs(const BandRect& target) const override;
  void Make(const Band& source, Band& target, RowRange rows) const override;

 protected:
  void Set(Raster like, RowRule rule);
  /// Called after the rule has made row `y`.
  virtual void Mend(int /*y*/, uint8_t* /*row*/) const {}

 private:
  Pixels like_;
  const Sides size_;
  RowRule rule_;
};

/// A small raster of zeros with the kind of `like`.
Raster SmallLike(const Raster& like, int width, int height);

}  // namespace rasterkit::detail
