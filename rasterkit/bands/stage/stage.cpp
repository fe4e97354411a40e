#include <string>
#include <utility>

#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// Part of the work that passes over the source are.
constexpr double kLooking = 0.3;

size_t StrideOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) { return rows.Stride(); }, pixels);
}

StageRun PartOf(const StageRun& run, double from, double to) {
  if (!run.progress) return {run.threads, {}};
  return {run.threads, [&run, from, to](double done) { run.progress(from + (to - from) * done); }};
}

/// The rows that a pass needs, as a band of their own where they are not all.
void LookAt(BandWork& work, const Band& source, const StageRun& run) {
  const RowRange rows = work.Looks();
  if (rows.count == HeightOf(source.pixels)) return work.Look(source, run);
  work.Look(CutBand(source, {0, rows.first, WidthOf(source.pixels), rows.count}), run);
}

}  // namespace

void BandWork::Look(const Band&, const StageRun&) {}

std::unique_ptr<BandWork> Stage::Start(const Pixels&, const StageRun&) const {
  return nullptr;
}

Pixels BandStage::Make(Pixels source, const StageRun& run, Changes& changes) const {
  if (WidthOf(source) != source_.width || HeightOf(source) != source_.height) {
    throw RangeError("a stage for " + std::to_string(source_.width) + " x " +
                     std::to_string(source_.height) + " pixels gets " +
                     std::to_string(WidthOf(source)) + " x " + std::to_string(HeightOf(source)));
  }
  const std::unique_ptr<BandWork> work = Start(source, run);
  if (!work) throw UnsupportedError("this stage does not work in parts");
  return detail::MakeWhole(*work, std::move(source), run, changes);
}

namespace detail {

Pixels MakeWhole(BandWork& work, Pixels source, const StageRun& run, Changes& changes) {
  Band whole{std::move(source)};
  double start = 0;
  while (work.Looks().count > 0) {
    const double end = start + (1 - start) * kLooking;
    LookAt(work, whole, PartOf(run, start, end));
    work.Decide();
    start = end;
  }
  const Sides size = work.Size();
  Band target{NewPixels(work.Like(), size.width, size.height)};
  const size_t rowBytes = StrideOf(target.pixels) + StrideOf(whole.pixels);
  const int piece = work.RowsOfPiece() > 0 ? work.RowsOfPiece() : PieceOf(size.height, rowBytes);
  ForRows(size.height, piece, run, {start, 1}, [&](int first, int last) {
    work.Make(whole, target, {first, last - first});
  });
  work.Finish(changes);
  return std::move(target.pixels);
}

}  // namespace detail

}  // namespace rasterkit
