#include <algorithm>
#include <cstring>

#include <rasterkit/bands/flow/row_window.h>

namespace rasterkit::detail {
namespace {

int PlanesOf(const Pixels& pixels) {
  const auto* samples = std::get_if<Samples>(&pixels);
  return samples != nullptr ? samples->Planes() : 1;
}

uint8_t* RowOf(Pixels& pixels, int y, int plane) {
  if (auto* samples = std::get_if<Samples>(&pixels)) return samples->Row(y, plane);
  return std::get<Raster>(pixels).Row(y);
}

const uint8_t* RowOf(const Pixels& pixels, int y, int plane) {
  if (const auto* samples = std::get_if<Samples>(&pixels)) return samples->Row(y, plane);
  return std::get<Raster>(pixels).Row(y);
}

size_t StrideOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) { return rows.Stride(); }, pixels);
}

}  // namespace

RowWindow::RowWindow(const Pixels& like, Sides picture, int capacity)
    : like_(like), picture_(picture), capacity_(std::clamp(capacity, 1, picture.height)) {}

RowWindow::RowWindow(Pixels& whole)
    : like_(whole),
      picture_{WidthOf(whole), HeightOf(whole)},
      capacity_(picture_.height),
      isWhole_(true),
      band_{PixelsInMemory(RowOf(whole, 0, 0), whole, picture_.width, picture_.height)} {}

void RowWindow::Allocate() {
  memory_ = PixelMemory(static_cast<size_t>(BytesOfPixels(like_, picture_.width, capacity_)));
  band_.pixels = PixelsInMemory(memory_.Data(), like_, picture_.width, capacity_);
}

void RowWindow::Place(const LevelRows& rows, const RowWindow& before) {
  if (isWhole_) return;
  if (memory_.Size() == 0) Allocate();
  if (rows.wanted.count == 0) return;
  const int first = rows.wanted.first, end = first + rows.wanted.count;
  const int oldTop = before.band_.top;
  const bool isBelow = rows.missing.first > first || rows.missing.count == rows.wanted.count;
  if (&before != this || first < oldTop || end > oldTop + capacity_) {
    band_.top = isBelow || rows.missing.count == 0 ? std::min(first, picture_.height - capacity_)
                                                   : std::max(0, end - capacity_);
  }
  const int missingEnd = rows.missing.first + rows.missing.count;
  const RowRange kept = rows.missing.count == 0 ? rows.wanted
                        : isBelow               ? RowRange{first, rows.missing.first - first}
                                                : RowRange{missingEnd, end - missingEnd};
  if (kept.count > 0 && (&before != this || band_.top != oldTop)) TakeOver(kept, before, oldTop);
}

void RowWindow::TakeOver(RowRange rows, const RowWindow& before, int oldTop) {
  const size_t bytes = StrideOf(band_.pixels) * static_cast<size_t>(rows.count);
  for (int plane = 0; plane < PlanesOf(like_); ++plane) {
    std::memmove(RowOf(band_.pixels, rows.first - band_.top, plane),
                 RowOf(before.band_.pixels, rows.first - oldTop, plane), bytes);
  }
}

void RowWindow::With(RowRange rows, bool isRead, bool isWritten,
                     const std::function<void(Pixels&)>& use) {
  const int at = rows.first - band_.top;
  if (PlanesOf(like_) == 1) {
    Pixels view =
        PixelsInMemory(RowOf(band_.pixels, at, 0), band_.pixels, picture_.width, rows.count);
    return use(view);
  }
  if (at == 0 && rows.count == HeightOf(band_.pixels)) return use(band_.pixels);
  Pixels copy = NewPixels(band_.pixels, picture_.width, rows.count);
  if (isRead) CopyPart(band_.pixels, {0, at, picture_.width, rows.count}, copy, 0, 0);
  use(copy);
  if (isWritten) CopyPart(copy, {0, 0, picture_.width, rows.count}, band_.pixels, 0, at);
}

}  // namespace rasterkit::detail
