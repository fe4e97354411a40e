#pragma once

#include <memory>
#include <utility>

#include <rasterkit/bands/stage/band_work.h>

namespace rasterkit::detail {

/// A work that another one does; a derived class adds to it.
class ForwardedWork : public BandWork {
 public:
  explicit ForwardedWork(std::unique_ptr<BandWork> work) : work_(std::move(work)) {}

  RowRange Looks() const override { return work_->Looks(); }
  void Look(const Band& rows, const StageRun& run) override { work_->Look(rows, run); }
  void Decide() override { work_->Decide(); }
  const Pixels& Like() const override { return work_->Like(); }
  Sides Size() const override { return work_->Size(); }
  bool MakesParts() const override { return work_->MakesParts(); }
  BandRect Needs(const BandRect& target) const override { return work_->Needs(target); }
  void Make(const Band& source, Band& target, RowRange rows) const override {
    work_->Make(source, target, rows);
  }
  int RowsOfPiece() const override { return work_->RowsOfPiece(); }
  void Finish(Changes& changes) override { work_->Finish(changes); }

 protected:
  void Follow(std::unique_ptr<BandWork> work) { work_ = std::move(work); }

 private:
  std::unique_ptr<BandWork> work_;
};

/// Sees the rows of one pass, and then begins the work that makes the rows.
class Finding {
 public:
  virtual ~Finding() = default;
  virtual RowRange Looks() const = 0;
  virtual void Look(const Band& rows, const StageRun& run) = 0;
  virtual std::unique_ptr<BandWork> Begin() = 0;
};

/// A work that needs something of the pixels before it can begin.
std::unique_ptr<BandWork> MakeLookingWork(std::unique_ptr<Finding> finding);

}  // namespace rasterkit::detail
