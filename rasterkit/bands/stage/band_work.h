#pragma once

#include <rasterkit/bands/stage/band.h>
#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/bands/stage/stage_run.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// One run of a stage, which makes its result in parts. The pixels do not depend on how the result
/// is divided.
///
/// Order of the calls: passes over the source as long as `Looks` needs rows, each of which ends
/// with `Decide`; then `Like`, `Size`, `Needs` and `Make` as often as wanted; then `Finish`.
class RASTERKIT_EXPORT BandWork {
 public:
  virtual ~BandWork() = default;

  /// Rows of the source that this pass must see before the first row of the result can be made;
  /// none by default.
  virtual RowRange Looks() const { return {}; }
  /// Sees the next of these rows, in full width: each row once, from top to bottom.
  virtual void Look(const Band& rows, const StageRun& run);
  /// Ends the pass.
  virtual void Decide() {}

  /// A picture of any size with the kind of the result's pixels: format or layout, palette,
  /// transparency, resolution, profile. Its rows have no meaning.
  virtual const Pixels& Like() const = 0;
  /// Of the result.
  virtual Sides Size() const = 0;

  /// True if parts of rows can be made of parts of rows. Else only rows in full width are
  /// requested, and given.
  virtual bool MakesParts() const { return false; }
  /// The part of the source that a part of the result needs; 0 x 0 if it needs none.
  virtual BandRect Needs(const BandRect& target) const = 0;
  /// Makes rows of `target`, whose place and size are set and whose pixels are undefined. `rows`
  /// counts from the top of the result, inside of the target. `source` covers what they need. Bytes
  /// after the last pixel of a raster's row are set to 0. Several threads may make different rows.
  virtual void Make(const Band& source, Band& target, RowRange rows) const = 0;
  /// Rows that a thread makes at a time; 0: so many that they take a small part of a millisecond.
  virtual int RowsOfPiece() const { return 0; }

  /// Adds losses that showed only in the pixels. Called once, after the last row.
  virtual void Finish(Changes&) {}
};

}  // namespace rasterkit
