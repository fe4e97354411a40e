#include "tests/bands/colors_in_bands.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <rasterkit/bands/stage/row_work.h>

namespace rasterkit::test {
namespace {

void FillWithNoise(Pixels& pixels) {
  constexpr int kNoise = 0xA5;
  if (auto* raster = std::get_if<Raster>(&pixels)) {
    for (int y = 0; y < raster->Height(); ++y)
      std::memset(raster->Row(y), kNoise, raster->Stride());
    return;
  }
  auto& samples = std::get<Samples>(pixels);
  for (int plane = 0; plane < samples.Planes(); ++plane) {
    for (int y = 0; y < samples.Height(); ++y) {
      std::memset(samples.Row(y, plane), kNoise, samples.Stride());
    }
  }
}

Band Whole(const Pixels& source) {
  return {std::visit([](const auto& rows) -> Pixels { return rows.Clone(); }, source)};
}

void LookInBands(BandWork& work, const Band& source, const InBands& how) {
  const int width = WidthOf(source.pixels);
  for (RowRange looks = work.Looks(); looks.count > 0; looks = work.Looks()) {
    for (int top = looks.first; top < looks.first + looks.count; top += how.rows) {
      const int count = std::min(how.rows, looks.first + looks.count - top);
      work.Look(CutBand(source, {0, top, width, count}), {how.threads, {}});
    }
    work.Decide();
  }
}

Band MakeBand(const BandWork& work, const Band& source, int top, const InBands& how) {
  const Sides size = work.Size();
  const int count = std::min(how.rows, size.height - top);
  Band band{NewPixels(work.Like(), size.width, count), 0, top};
  FillWithNoise(band.pixels);
  const Band needed = CutBand(source, work.Needs(band.Rect()));
  detail::ForRows(count, (how.rows + 2) / 3, {how.threads, {}}, {}, [&](int first, int last) {
    work.Make(needed, band, {top + first, last - first});
  });
  return band;
}

}  // namespace

Pixels MadeInBands(const Stage& stage, const Pixels& source, const InBands& how, Changes& changes) {
  Pixels like = NewPixels(source, 1, 1);
  FillWithNoise(like);
  const std::unique_ptr<BandWork> work = stage.Start(like, {how.threads, {}});
  if (!work) throw std::logic_error("the stage does not work in parts");
  const Band whole = Whole(source);
  LookInBands(*work, whole, how);
  const Sides size = work->Size();
  Pixels made = NewPixels(work->Like(), size.width, size.height);
  FillWithNoise(made);
  for (int top = 0; top < size.height; top += how.rows) {
    if (top / how.rows % 2 == 1) MakeBand(*work, whole, top, how);
    const Band band = MakeBand(*work, whole, top, how);
    const BandRect rect{0, 0, size.width, HeightOf(band.pixels)};
    CopyPart(band.pixels, rect, made, 0, top);
  }
  work->Finish(changes);
  return made;
}

}  // namespace rasterkit::test
