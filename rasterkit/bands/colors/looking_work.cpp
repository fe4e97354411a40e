#include <utility>

#include <rasterkit/bands/colors/looking_work.h>

namespace rasterkit::detail {
namespace {

class LookingWork : public ForwardedWork {
 public:
  explicit LookingWork(std::unique_ptr<Finding> finding)
      : ForwardedWork(nullptr), finding_(std::move(finding)) {}

  RowRange Looks() const override { return finding_ ? finding_->Looks() : ForwardedWork::Looks(); }
  void Look(const Band& rows, const StageRun& run) override {
    if (!finding_) return ForwardedWork::Look(rows, run);
    finding_->Look(rows, run);
  }
  void Decide() override {
    if (!finding_) return ForwardedWork::Decide();
    Follow(finding_->Begin());
    finding_.reset();
  }

 private:
  std::unique_ptr<Finding> finding_;
};

}  // namespace

std::unique_ptr<BandWork> MakeLookingWork(std::unique_ptr<Finding> finding) {
  return std::make_unique<LookingWork>(std::move(finding));
}

}  // namespace rasterkit::detail
