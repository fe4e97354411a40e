#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <rasterkit/bands/affine_rows.h>
#include <rasterkit/bands/averaged_form.h>
#include <rasterkit/bands/band_rows.h>
#include <rasterkit/bands/corner_fill.h>
#include <rasterkit/bands/linear_rows.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/kernels/turn/gather_pixels.h>
#include <rasterkit/kernels/turn/rotate_pixels.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using detail::AveragedForm;
using detail::PixelGrid;
using detail::ProgressShare;

/// Part of the progress that whole quarter turns make up.
constexpr double kQuartersShare = 0.2;

/// A picture taken from another one along an affine.
struct TurnTask {
  Sides source, target;
  Affine toOld;
  /// The rotation that it is; 0 for any other affine.
  float degrees = 0;
  Resampling how;

  bool IsClamped() const { return how.fill.kind == Fill::Kind::edge; }
};

/// Nearest pixels of a raster or of one plane.
void TakeNearest(const TurnTask& task, const detail::ConstPixelGrid& source,
                 const PixelGrid& target, const std::vector<uint8_t>& fill, const StageRun& run,
                 const ProgressShare& share) {
  const auto piece = [&](int first, int last) {
    if (task.degrees == 0) {
      detail::GatherByAffine(task.toOld, source, target, fill.data(), task.IsClamped(), first,
                             last);
      return;
    }
    const kernels::RotationMapping mapping(kernels::SineCosineOfDegrees(task.degrees),
                                           task.source.width, task.source.height, task.target.width,
                                           task.target.height);
    if (source.bits <= 32) {
      uint32_t pixel = 0;
      for (size_t i = 0; i < fill.size(); ++i) pixel |= uint32_t{fill[i]} << (8 * i);
      kernels::RotatePixels(mapping, source.rows, target.rows, source.bits, pixel, first, last);
    } else {
      kernels::GatherPixels(mapping, source.rows, target.rows, source.BytesPerPixel(), fill.data(),
                            first, last);
    }
    if (task.IsClamped()) {
      kernels::GatherEdges(mapping, source.rows, target.rows, source.bits, first, last);
    }
  };
  detail::ForRows(task.target.height, kernels::kRotationStripRows, run, share, piece);
}

std::vector<uint8_t> BytesOfPixel(uint32_t pixel, int bits) {
  std::vector<uint8_t> bytes;
  for (int i = 0; i < std::max(1, bits / 8); ++i) {
    bytes.push_back(static_cast<uint8_t>(pixel >> (8 * i)));
  }
  return bytes;
}

Pixels EmptyTarget(const Pixels& source, Sides sides) {
  if (const auto* samples = std::get_if<Samples>(&source)) {
    Samples target(samples->Layout(), sides.width, sides.height, samples->Planes() > 1);
    target.resolution = samples->resolution;
    return target;
  }
  const auto& raster = std::get<Raster>(source);
  Raster target(raster.Format(), sides.width, sides.height);
  target.CopyProperties(raster);
  return target;
}

void TakeNearest(const TurnTask& task, Pixels& source, Pixels& target,
                 const std::vector<uint8_t>& fill, const StageRun& run,
                 const ProgressShare& share) {
  const int planes = detail::PlanesOf(source);
  for (int plane = 0; plane < planes; ++plane) {
    const detail::ConstPixelGrid from = detail::GridOf(std::as_const(source), plane);
    const auto first = fill.begin() + static_cast<ptrdiff_t>(from.BytesPerPixel()) * plane;
    const double step = (share.to - share.from) / planes;
    TakeNearest(task, from, detail::GridOf(target, plane),
                {first, first + static_cast<ptrdiff_t>(from.BytesPerPixel())}, run,
                {share.from + step * plane, share.from + step * (plane + 1)});
  }
}

void Interpolate(const TurnTask& task, Pixels& source, Pixels& target,
                 const std::vector<uint8_t>& fill, std::optional<double> noData,
                 const StageRun& run, const ProgressShare& share) {
  constexpr int kRowsOfPiece = 16;
  const detail::BandRows from(source);
  detail::BandRows to(target);
  const detail::LinearTask linear{task.toOld, fill.data(), task.IsClamped(), noData};
  const auto rows = detail::MakeLinearRows(from, linear);
  if (auto* raster = std::get_if<Raster>(&target)) raster->ClearPadding();
  detail::ForRows(task.target.height, kRowsOfPiece, run, share, [&](int first, int last) {
    std::vector<uint8_t> row(to.RowBytes());
    for (int y = first; y < last; ++y) {
      rows->Make(y, task.target.width, row.data());
      to.Store(y, row.data());
    }
  });
}

/// A marked color would be mixed with others. An index that means "not measured" becomes the color
/// of its entry, as the indexes of the picture do.
Resampling FillFor(Resampling how, AveragedForm form, const Raster& raster) {
  const bool isNoData = how.fill.kind == Fill::Kind::noData || how.fill.kind == Fill::Kind::usual;
  const bool isIndex = isNoData && form != AveragedForm::none && IsIndexed(raster.Format()) &&
                       how.noData >= 0 && how.noData < raster.palette.Entries().size();
  if (isIndex) {
    const auto index = static_cast<int>(*how.noData);
    how.fill = {Fill::Kind::color, EntryColor(raster.palette.Entry(index))};
  }
  if (form != AveragedForm::none && how.fill.kind == Fill::Kind::automatic) {
    how.fill.kind = Fill::Kind::transparent;
  }
  return how;
}

Pixels Resampled(const TurnTask& task, Pixels source, const StageRun& run,
                 const ProgressShare& share) {
  auto* raster = std::get_if<Raster>(&source);
  const AveragedForm form =
      detail::FormForTurn(LayoutOf(source), raster != nullptr, task.how.filter);
  const bool hasNumbers =
      raster == nullptr || (raster->Format() == pf8bit && form == AveragedForm::gray);
  std::vector<uint8_t> fill;
  if (raster != nullptr) {
    const Resampling how = FillFor(task.how, form, *raster);
    detail::BringToForm(*raster, form);
    const uint32_t pixel = detail::PrepareFill(*raster, how);
    fill = BytesOfPixel(pixel, StoredBitsPerPixel(raster->Format()));
  } else {
    fill = detail::PrepareFill(std::get<Samples>(source), task.how);
  }
  Pixels target = EmptyTarget(source, task.target);
  if (form == AveragedForm::none) {
    TakeNearest(task, source, target, fill, run, share);
  } else {
    Interpolate(task, source, target, fill, hasNumbers ? task.how.noData : std::nullopt, run,
                share);
  }
  return target;
}

/// Rows that the affine leads to, with those around them.
RowRange SourceRows(const TurnTask& task, RowRange target) {
  constexpr double kAround = 2;
  if (target.count == 0) return {};
  double low = std::numeric_limits<double>::infinity(), high = -low;
  for (const double x : {0.0, task.target.width - 1.0}) {
    for (const double y : {target.first + 0.0, target.first + target.count - 1.0}) {
      const double row = task.toOld.At(x, y).y;
      low = std::min(low, row);
      high = std::max(high, row);
    }
  }
  const double last = task.source.height - 1;
  low = std::floor(low - kAround);
  high = std::ceil(high + kAround);
  if (!task.IsClamped() && (high < 0 || low > last)) return {};
  const auto first = static_cast<int>(std::clamp(low, 0.0, last));
  return {first, static_cast<int>(std::clamp(high, 0.0, last)) - first + 1};
}

class RotateRows : public Stage {
 public:
  RotateRows(Sides source, const RotationFrame& frame, const Resampling& how)
      : quarters_(TurnStage(source, frame.quarters)), hasQuarters_(frame.quarters != 0) {
    const Sides turned = frame.quarters % 2 == 0 ? source : Sides{source.height, source.width};
    hasRest_ = frame.rest != 0;
    // The affine of the rest alone: that of a picture of the turned sides.
    task_ = {turned, frame.sides, frame.toOld, frame.rest, how};
    if (hasQuarters_ && hasRest_) {
      const RotationFrame back = FrameOfRotation(turned, -90.0 * frame.quarters);
      task_.toOld = back.toOld.After(frame.toOld);
    }
  }

  RowRange Needs(RowRange target) const override {
    return quarters_->Needs(hasRest_ ? SourceRows(task_, target) : target);
  }

  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    if (!hasRest_) return quarters_->Make(std::move(source), run, changes);
    double start = 0;
    if (hasQuarters_) {
      StageRun part = run;
      start = kQuartersShare;
      if (run.progress) {
        part.progress = [&](double done) { run.progress(done * kQuartersShare); };
      }
      source = quarters_->Make(std::move(source), part, changes);
    } else {
      detail::RequireSides(source, task_.source);
    }
    return Resampled(task_, std::move(source), run, {start, 1});
  }

 private:
  const std::unique_ptr<Stage> quarters_;
  const bool hasQuarters_;
  bool hasRest_ = false;
  TurnTask task_;
};

class AffineRows : public Stage {
 public:
  explicit AffineRows(const TurnTask& task) : task_(task) {}

  RowRange Needs(RowRange target) const override { return SourceRows(task_, target); }

  Pixels Make(Pixels source, const StageRun& run, Changes&) const override {
    detail::RequireSides(source, task_.source);
    return Resampled(task_, std::move(source), run, {});
  }

 private:
  const TurnTask task_;
};

}  // namespace

std::unique_ptr<Stage> RotateStage(Sides source, double degrees, const Resampling& how) {
  return std::make_unique<RotateRows>(source, FrameOfRotation(source, degrees), how);
}

std::unique_ptr<Stage> AffineStage(Sides source, const Affine& toOld, Sides target,
                                   const Resampling& how) {
  if (!toOld.IsFinite()) throw RangeError("a picture is taken along finite numbers only");
  if (target.width < 1 || target.height < 1) {
    throw RangeError("a picture has at least one pixel per side");
  }
  return std::make_unique<AffineRows>(TurnTask{source, target, toOld, 0, how});
}

}  // namespace rasterkit
