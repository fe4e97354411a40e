#include <utility>

#include <rasterkit/bands/colors/placed_rows.h>

namespace rasterkit::detail {

PlacedRows::PlacedRows(Pixels source, std::unique_ptr<Stage> stage, const StageRun& run)
    : stage_(std::move(stage)), work_(stage_->Start(source, {run.threads, {}})) {
  if (!work_) {
    Changes unused;
    source_.pixels = stage_->Make(std::move(source), {run.threads, {}}, unused);
    return;
  }
  source_.pixels = std::move(source);
  while (work_->Looks().count > 0) {
    const RowRange looks = work_->Looks();
    work_->Look(CutBand(source_, {0, looks.first, WidthOf(source_.pixels), looks.count}),
                {run.threads, {}});
    work_->Decide();
  }
}

Pixels PlacedRows::Rows(int first, int count) const {
  if (!work_) {
    return CutBand(source_, {0, first, WidthOf(source_.pixels), count}).pixels;
  }
  Band rows{NewPixels(work_->Like(), work_->Size().width, count), 0, first};
  work_->Make(source_, rows, {first, count});
  return std::move(rows.pixels);
}

}  // namespace rasterkit::detail
