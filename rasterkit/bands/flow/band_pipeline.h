#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <rasterkit/bands/flow/band_plan.h>
#include <rasterkit/bands/flow/part_maker.h>
#include <rasterkit/bands/flow/row_window.h>
#include <rasterkit/bands/stage/stage_run.h>

namespace rasterkit::detail {

/// Gets the rows of a result from top to bottom, one band after the other.
using TakeRows = std::function<void(Pixels& rows, int top)>;

/// The levels of a chain at work: what is done for one band of the result at one level. Knows no
/// order; see RunPipeline.
class BandPipeline {
 public:
  /// `isDouble`: a level may be given rows while those before are still in use, where that takes
  /// little memory. The chain must outlive the pipeline.
  BandPipeline(const RowChain& chain, const BandDivision& division, bool isDouble);

  /// Keeps the result in this picture, which must outlive the pipeline.
  void KeepIn(Pixels& whole);

  const RowChain& Chain() const { return chain_; }
  BandPlan& Plan() { return plan_; }

  /// True if rows of the level stay where they are, so that no room is needed for them.
  bool IsWhole(size_t level) const;
  /// Windows that the level takes turns with.
  size_t Windows(size_t level) const { return windows_[level].size(); }

  /// Bytes that the windows take, and parts on so many threads.
  uint64_t BytesOfWindows(int threads) const;

  /// Makes room in a window for rows of a level, and takes over what another one holds.
  void Place(size_t level, const LevelRows& rows, size_t window, size_t before);
  /// Parts into which the making of rows is divided, at least 1 if there are any; of the source:
  /// one part.
  int Pieces(size_t level, const LevelRows& rows, int threads) const;
  /// Makes one of these parts. `sourceWindow`: of the level below.
  void MakePiece(size_t level, const LevelRows& rows, size_t window, size_t sourceWindow, int piece,
                 int pieces);
  /// Hands a band of the result out.
  void Hand(RowRange band, size_t window, const TakeRows& take);

 private:
  void ReadRows(RowRange missing, RowWindow& window);

  const RowChain& chain_;
  BandPlan plan_;
  /// Of each level.
  std::vector<std::vector<RowWindow>> windows_;
  /// Makes the first level if that is not the source.
  std::unique_ptr<PartMaker> parts_;
  /// The rows of the source are used where they are.
  bool isSourceWhole_ = false;
  bool isKept_ = false;
};

/// Sends all rows through the pipeline. `take` may be empty if the result is kept. The error that
/// comes first in the order of the rows is thrown, after all bands before it were taken.
void RunPipeline(BandPipeline& pipeline, const StageRun& run, const TakeRows& take);

}  // namespace rasterkit::detail
