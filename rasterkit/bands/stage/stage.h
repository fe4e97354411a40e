#pragma once

#include <memory>
#include <vector>

#include <rasterkit/bands/stage/band_work.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Makes the rows of one step from the rows of the step before.
class RASTERKIT_EXPORT Stage {
 public:
  virtual ~Stage() = default;
  /// The rows of the source that rows of the result need.
  virtual RowRange Needs(RowRange target) const = 0;
  /// Begins to make the result in parts from pixels of the kind of `like`, whose rows have no
  /// meaning. Null if this stage needs the whole picture for such pixels. The stage must outlive
  /// the work. Throws what `Make` throws for a kind of pixels that the stage refuses.
  virtual std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun& run) const;
  /// Makes the whole result from the whole source. Losses that show only in the pixels (colors that
  /// a palette has no room for) are added to `changes`.
  virtual Pixels Make(Pixels source, const StageRun& run, Changes& changes) const = 0;
};

/// A stage that works in parts for all pixels: the whole result is one part.
class RASTERKIT_EXPORT BandStage : public Stage {
 public:
  /// Throws RangeError if `source` has another size than the stage was made for.
  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override;

 protected:
  explicit BandStage(Sides source) : source_(source) {}
  /// Of the picture that the stage gets.
  Sides Source() const { return source_; }

 private:
  const Sides source_;
};

/// The stages of a picture in the order in which they work. Stages never change: lists share them.
using Stages = std::vector<std::shared_ptr<const Stage>>;

namespace detail {

/// Makes the whole result of a work from the whole source.
RASTERKIT_EXPORT Pixels MakeWhole(BandWork& work, Pixels source, const StageRun& run,
                                  Changes& changes);

}  // namespace detail

}  // namespace rasterkit
