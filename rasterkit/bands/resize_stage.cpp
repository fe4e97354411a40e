#include <algorithm>
#include <string>
#include <utility>

#include <rasterkit/bands/band_rows.h>
#include <rasterkit/bands/mean_rows.h>
#include <rasterkit/bands/picked_rows.h>
#include <rasterkit/bands/prepared_pixels.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/raster/stretch/axis_positions.h>
#include <rasterkit/raster/stretch/halftone.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using detail::AveragedForm;
using kernels::HalftoneAxis;
using kernels::HalftoneRule;
using kernels::HalftoneTap;

HalftoneRule RuleOf(Filter filter) {
  if (filter == Filter::area) return HalftoneRule::area;
  return filter == Filter::linear ? HalftoneRule::linear : HalftoneRule::automatic;
}

HalftoneAxis AxisOf(int from, int to, Filter filter) {
  return kernels::MakeHalftoneAxis(to, from, 0, to, false, RuleOf(filter));
}

std::vector<int> NearestPositions(int from, int to) {
  return detail::MapAxis({0, to, 0, from}, to, from).positions;
}

RowRange Covering(int low, int high) {
  return {low, high - low + 1};
}

/// Positions of the source that `count` taps from `first` on take; taps rise.
RowRange Covered(const HalftoneAxis& axis, int first, int count) {
  const HalftoneTap& last = axis.taps[static_cast<size_t>(first + count - 1)];
  return Covering(axis.taps[static_cast<size_t>(first)].first, last.first + last.count - 1);
}

RowRange Covered(const std::vector<int>& positions, int first, int count) {
  return Covering(positions[static_cast<size_t>(first)],
                  positions[static_cast<size_t>(first + count - 1)]);
}

/// The taps of a part of an axis, counted from position `origin` of the source.
HalftoneAxis PartOfAxis(const HalftoneAxis& axis, int first, int count, int origin) {
  HalftoneAxis part = axis;
  part.taps.assign(axis.taps.begin() + first, axis.taps.begin() + first + count);
  for (HalftoneTap& tap : part.taps) tap.first -= origin;
  return part;
}

/// What all ways to resize share.
struct ResizeTask {
  Sides source, target;
  Filter filter = Filter::automatic;
  std::optional<double> noData;
};

Resolution Scaled(const Resolution& dpi, const ResizeTask& task) {
  if (!dpi.IsKnown()) return dpi;
  return {dpi.x * (static_cast<double>(task.target.width) / task.source.width),
          dpi.y * (static_cast<double>(task.target.height) / task.source.height)};
}

Pixels KindAfter(const Pixels& prepared, const ResizeTask& task) {
  Pixels kind = NewPixels(prepared, 1, 1);
  std::visit([&](auto& rows) { rows.resolution = Scaled(rows.resolution, task); }, kind);
  return kind;
}

/// Prepares the part of the source that pieces of rows need, and makes them of it.
class ResizeWork : public BandWork {
 public:
  ResizeWork(detail::PreparedPixels form, const ResizeTask& task)
      : form_(std::move(form)), task_(task), like_(KindAfter(form_.Like(), task)) {}

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return task_.target; }
  bool MakesParts() const override { return true; }

  BandRect Needs(const BandRect& target) const override {
    if (target.width == 0 || target.height == 0) return {};
    const RowRange across = Columns(target.left, target.width);
    const RowRange down = Rows(target.top, target.height);
    return {across.first, down.first, across.count, down.count};
  }

  void Make(const Band& source, Band& target, RowRange rows) const override {
    if (!form_.Changes()) return Fill(source, target, rows);
    Band part =
        CutBand(source, Needs({target.left, rows.first, WidthOf(target.pixels), rows.count}));
    part.pixels = form_.Apply(std::move(part.pixels));
    Fill(part, target, rows);
  }

  /// So many that the rows of the source that they need take a small part of a millisecond.
  int RowsOfPiece() const override {
    const Pixels& prepared = form_.Like();
    const size_t pixel = detail::GridOf(prepared, 0).BytesPerPixel() *
                         static_cast<size_t>(detail::PlanesOf(prepared));
    const size_t rows = static_cast<size_t>(task_.source.height / task_.target.height) + 1;
    const size_t bytes = pixel * (rows * static_cast<size_t>(task_.source.width) +
                                  static_cast<size_t>(task_.target.width));
    return detail::PieceOf(task_.target.height, bytes);
  }

 protected:
  const ResizeTask& Task() const { return task_; }
  const detail::PreparedPixels& Form() const { return form_; }

 private:
  /// Columns and rows of the source that those of the result need.
  virtual RowRange Columns(int first, int count) const = 0;
  virtual RowRange Rows(int first, int count) const = 0;
  /// Makes rows of prepared pixels.
  virtual void Fill(const Band& source, Band& target, RowRange rows) const = 0;

  const detail::PreparedPixels form_;
  const ResizeTask task_;
  const Pixels like_;
};

/// Nearest pixels.
class PickedWork : public ResizeWork {
 public:
  PickedWork(detail::PreparedPixels form, const ResizeTask& task)
      : ResizeWork(std::move(form), task),
        columns_(NearestPositions(task.source.width, task.target.width)),
        rows_(NearestPositions(task.source.height, task.target.height)) {}

 private:
  RowRange Columns(int first, int count) const override { return Covered(columns_, first, count); }
  RowRange Rows(int first, int count) const override { return Covered(rows_, first, count); }

  void Fill(const Band& source, Band& target, RowRange rows) const override {
    const auto columns = columns_.begin() + target.left;
    std::vector<int> across(columns, columns + WidthOf(target.pixels));
    for (int& column : across) column -= source.left;
    for (int plane = 0; plane < detail::PlanesOf(source.pixels); ++plane) {
      const detail::ConstPixelGrid from = detail::GridOf(source.pixels, plane);
      const detail::PixelGrid to = detail::GridOf(target.pixels, plane);
      for (int y = rows.first; y < rows.first + rows.count; ++y) {
        detail::PickPixels(from, rows_[static_cast<size_t>(y)] - source.top, across, to,
                           y - target.top);
      }
    }
  }

  const std::vector<int> columns_, rows_;
};

/// Means of numbers of any type, and of colors by all filters.
class MeanWork : public ResizeWork {
 public:
  MeanWork(detail::PreparedPixels form, const ResizeTask& task)
      : ResizeWork(std::move(form), task),
        columns_(AxisOf(task.source.width, task.target.width, task.filter)),
        rows_(AxisOf(task.source.height, task.target.height, task.filter)) {}

 private:
  RowRange Columns(int first, int count) const override { return Covered(columns_, first, count); }
  RowRange Rows(int first, int count) const override { return Covered(rows_, first, count); }

  void Fill(const Band& source, Band& target, RowRange rows) const override {
    const detail::BandRows from(source, Task().source);
    detail::StoredRows to(target);
    const detail::MeanAxes axes{
        PartOfAxis(columns_, target.left, WidthOf(target.pixels), source.left),
        PartOfAxis(rows_, rows.first, rows.count, 0)};
    const auto means =
        detail::MakeMeanRows(from, axes, Form().HasNumbers() ? Task().noData : std::nullopt);
    std::vector<uint8_t> row(to.Rows().RowBytes());
    for (int y = 0; y < rows.count; ++y) {
      means->Make(y, row.data());
      to.Store(rows.first + y, row.data());
    }
  }

  const HalftoneAxis columns_, rows_;
};

/// Means of 24-bit colors by the usual filters.
class ColorMeanWork : public ResizeWork {
 public:
  using ResizeWork::ResizeWork;

 private:
  RowRange Columns(int first, int count) const override {
    return HalftonePositions(Task().source.width, Task().target.width, first, count);
  }
  RowRange Rows(int first, int count) const override {
    return HalftonePositions(Task().source.height, Task().target.height, first, count);
  }
  static RowRange HalftonePositions(int from, int to, int first, int count) {
    const auto tap = [&](int position) {
      return kernels::MakeHalftoneAxis(to, from, position, position + 1, false).taps.front();
    };
    const HalftoneTap last = tap(first + count - 1);
    return Covering(tap(first).first, last.first + last.count - 1);
  }

  void Fill(const Band& source, Band& target, RowRange rows) const override {
    const Sides whole = Task().target;
    const HalftonePart part{Task().source.width, Task().source.height, source.left, source.top};
    CopyHalftone(std::get<Raster>(target.pixels),
                 {-target.left, -target.top, whole.width - target.left, whole.height - target.top},
                 std::get<Raster>(source.pixels), part,
                 {rows.first - target.top, rows.first - target.top + rows.count});
  }
};

/// The pixels as they are.
class SameWork : public BandWork {
 public:
  SameWork(const Pixels& like, Sides sides) : like_(NewPixels(like, 1, 1)), sides_(sides) {}

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return sides_; }
  bool MakesParts() const override { return true; }
  BandRect Needs(const BandRect& target) const override { return target; }
  void Make(const Band& source, Band& target, RowRange rows) const override {
    CopyPart(
        source.pixels,
        {target.left - source.left, rows.first - source.top, WidthOf(target.pixels), rows.count},
        target.pixels, 0, rows.first - target.top);
  }

 private:
  const Pixels like_;
  const Sides sides_;
};

/// True if both sides go by the rule of CopyHalftone.
bool RuleIsAutomatic(const ResizeTask& task) {
  const auto fits = [&](int from, int to) {
    return task.filter == Filter::automatic || from == to ||
           (task.filter == Filter::area) == (to < from);
  };
  return fits(task.source.width, task.target.width) && fits(task.source.height, task.target.height);
}

class ResizeRows : public BandStage {
 public:
  explicit ResizeRows(const ResizeTask& task) : BandStage(task.source), task_(task) {}

  RowRange Needs(RowRange target) const override {
    if (target.count == 0) return {};
    if (task_.source == task_.target) return target;
    // Enough for every filter and every kind of pixels.
    const double scale = static_cast<double>(task_.source.height) / task_.target.height;
    const auto row = [&](double y) {
      return static_cast<int>(std::clamp(y, 0.0, static_cast<double>(task_.source.height - 1)));
    };
    return Covering(row(target.first * scale - 1.5),
                    row((target.first + target.count) * scale + 1));
  }

  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    if (task_.source == task_.target) return std::make_unique<SameWork>(like, task_.source);
    auto form = detail::PreparedPixels::ForResize(like, task_.source, task_.target, task_.filter);
    if (form.Form() == AveragedForm::none) {
      return std::make_unique<PickedWork>(std::move(form), task_);
    }
    if (form.Form() == AveragedForm::color && RuleIsAutomatic(task_)) {
      return std::make_unique<ColorMeanWork>(std::move(form), task_);
    }
    return std::make_unique<MeanWork>(std::move(form), task_);
  }

  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    if (task_.source != task_.target) return BandStage::Make(std::move(source), run, changes);
    detail::RequireSides(source, task_.source);
    return source;
  }

 private:
  const ResizeTask task_;
};

}  // namespace

std::unique_ptr<Stage> ResizeStage(Sides source, Sides target, Filter filter,
                                   std::optional<double> noData) {
  if (target.width < 1 || target.height < 1) {
    throw RangeError(std::to_string(target.width) + " x " + std::to_string(target.height) +
                     " is not a valid size: width and height must be at least 1");
  }
  return std::make_unique<ResizeRows>(ResizeTask{source, target, filter, noData});
}

}  // namespace rasterkit
