#pragma once

#include <memory>
#include <vector>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/flow/band_pipeline.h>
#include <rasterkit/bands/flow/row_chain.h>

namespace rasterkit::detail {

/// Turns stages into a chain, one after the other, and makes what must be there before the next
/// stage can begin: passes over the rows, whole pictures, rows that are kept.
class FlowBuilder {
 public:
  FlowBuilder(std::shared_ptr<RowReader> reader, FlowSettings settings);

  void Add(const Stage& stage, const StageRun& run);
  const RowChain& Chain() const { return chain_; }
  void Run(const StageRun& run, const TakeRows& take);
  /// All rows of the chain.
  Pixels Whole(const StageRun& run) { return Whole({settings_.threads, run.progress}, {}); }
  /// What was held at most, if the reader is ForetoldRows.
  FlowNeeds Needs() const { return needs_; }
  /// Adds what the reader noticed and what the stages lost, in their order.
  void Finish(CodecReport& report, Changes& changes);

 private:
  enum class Way {
    /// They flow by.
    flow,
    /// Parts of them are made when they are needed.
    parts,
    /// They are made once and kept.
    keep
  };

  struct StageEnd {
    std::shared_ptr<BandWork> work;
    Changes changes;
  };

  void AddWhole(const Stage& stage, const StageRun& run);
  void LookAtRows(BandWork& work, const StageRun& run);
  void AddWork(std::shared_ptr<BandWork> work, const StageRun& run);
  BandPlan UsualPlan() const;
  uint64_t BytesBelowLast() const;
  Way WayOfLast() const;
  void KeepRows(const StageRun& run, const TakeRows& take, bool mayUseScratch);
  void KeepSource();
  bool FitsMemory(uint64_t bytes) const;
  uint64_t BandBytes() const;
  BandDivision Division(RowRange rows) const;
  bool IsForetold() const;
  void KeepForetold(bool isInMemory);
  void CountPipeline(const BandPipeline& pipeline, uint64_t beside);
  RowRange AllRows() const;
  BandPipeline NewPipeline(RowRange rows);
  Pixels Whole(const StageRun& run, const TakeRows& take);
  uint64_t BytesAtEnd() const;

  const FlowSettings settings_;
  const std::shared_ptr<RowReader> reader_;
  RowChain chain_;
  FlowNeeds needs_;
  /// Of foretold rows.
  uint64_t keptScratch_ = 0;
  /// Of passes after which the rows are read again.
  CodecReport earlier_;
  std::vector<StageEnd> ends_;
};

}  // namespace rasterkit::detail
