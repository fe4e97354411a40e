#include <algorithm>
#include <string>
#include <utility>

#include <rasterkit/bands/averaged_form.h>
#include <rasterkit/bands/band_rows.h>
#include <rasterkit/bands/mean_rows.h>
#include <rasterkit/bands/picked_rows.h>
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

class ResizeRows : public Stage {
 public:
  ResizeRows(Sides source, Sides target, Filter filter, std::optional<double> noData)
      : source_(source), target_(target), filter_(filter), noData_(noData) {}

  RowRange Needs(RowRange target) const override {
    if (target.count == 0) return {};
    if (source_ == target_) return target;
    // Enough for every filter and every kind of pixels.
    const double scale = static_cast<double>(source_.height) / target_.height;
    const auto row = [&](double y) {
      return static_cast<int>(std::clamp(y, 0.0, static_cast<double>(source_.height - 1)));
    };
    return Covering(row(target.first * scale - 1.5),
                    row((target.first + target.count) * scale + 1));
  }

  Pixels Make(Pixels source, const StageRun& run, Changes&) const override {
    detail::RequireSides(source, source_);
    if (source_ == target_) return source;
    auto* raster = std::get_if<Raster>(&source);
    const AveragedForm form =
        detail::FormForResize(LayoutOf(source), raster != nullptr, source_, target_, filter_);
    const bool hasNumbers =
        raster == nullptr || (raster->Format() == pf8bit && form == AveragedForm::gray);
    if (raster != nullptr) detail::BringToForm(*raster, form);
    Pixels target = EmptyTarget(source);
    if (form == AveragedForm::none) {
      Pick(source, target, run);
    } else if (form == AveragedForm::color && RuleIsAutomatic()) {
      CopyMeans(std::get<Raster>(source), std::get<Raster>(target), run);
    } else {
      Average(source, target, hasNumbers ? noData_ : std::nullopt, run);
    }
    return target;
  }

 private:
  Resolution Scaled(const Resolution& dpi) const {
    if (!dpi.IsKnown()) return dpi;
    return {dpi.x * (static_cast<double>(target_.width) / source_.width),
            dpi.y * (static_cast<double>(target_.height) / source_.height)};
  }

  Pixels EmptyTarget(const Pixels& source) const {
    if (const auto* samples = std::get_if<Samples>(&source)) {
      Samples target(samples->Layout(), target_.width, target_.height, samples->Planes() > 1);
      target.resolution = Scaled(samples->resolution);
      return target;
    }
    const auto& raster = std::get<Raster>(source);
    Raster target(raster.Format(), target_.width, target_.height);
    target.CopyProperties(raster);
    target.resolution = Scaled(raster.resolution);
    return target;
  }

  void Pick(Pixels& source, Pixels& target, const StageRun& run) const {
    const std::vector<int> columns = NearestPositions(source_.width, target_.width);
    const std::vector<int> rows = NearestPositions(source_.height, target_.height);
    const int planes = detail::PlanesOf(source);
    for (int plane = 0; plane < planes; ++plane) {
      const detail::ConstPixelGrid from = detail::GridOf(std::as_const(source), plane);
      const detail::PixelGrid to = detail::GridOf(target, plane);
      detail::ForRows(
          target_.height, detail::PieceOf(target_.height, to.rows.stride + from.rows.stride), run,
          {static_cast<double>(plane) / planes, static_cast<double>(plane + 1) / planes},
          [&](int first, int last) { detail::PickPixels(columns, rows, from, to, first, last); });
    }
  }

  /// True if both sides go by the rule of CopyHalftone.
  bool RuleIsAutomatic() const {
    const auto fits = [&](int from, int to) {
      return filter_ == Filter::automatic || from == to || (filter_ == Filter::area) == (to < from);
    };
    return fits(source_.width, target_.width) && fits(source_.height, target_.height);
  }

  /// Rows of the source that a piece of work reads.
  int PieceOfMeans(size_t sourceStride) const {
    const size_t rows = static_cast<size_t>(source_.height) / static_cast<size_t>(target_.height);
    return detail::PieceOf(target_.height, (rows + 1) * sourceStride);
  }

  void CopyMeans(const Raster& source, Raster& target, const StageRun& run) const {
    detail::ForRows(
        target_.height, PieceOfMeans(source.Stride()), run, {}, [&](int first, int last) {
          Raster part(target.Format(), target_.width, last - first);
          CopyHalftone(part, {0, -first, target_.width, target_.height - first}, source);
          part.ClearPadding();
          for (int y = first; y < last; ++y) {
            std::copy_n(part.Row(y - first), target.Stride(), target.Row(y));
          }
        });
  }

  void Average(Pixels& source, Pixels& target, std::optional<double> noData,
               const StageRun& run) const {
    const detail::BandRows from(source);
    detail::BandRows to(target);
    const detail::MeanAxes axes{AxisOf(source_.width, target_.width, filter_),
                                AxisOf(source_.height, target_.height, filter_)};
    if (auto* raster = std::get_if<Raster>(&target)) raster->ClearPadding();
    detail::ForRows(target_.height, PieceOfMeans(from.RowBytes()), run, {},
                    [&](int first, int last) {
                      const auto means = detail::MakeMeanRows(from, axes, noData);
                      std::vector<uint8_t> row(to.RowBytes());
                      for (int y = first; y < last; ++y) {
                        means->Make(y, row.data());
                        to.Store(y, row.data());
                      }
                    });
  }

  const Sides source_, target_;
  const Filter filter_;
  const std::optional<double> noData_;
};

}  // namespace

std::unique_ptr<Stage> ResizeStage(Sides source, Sides target, Filter filter,
                                   std::optional<double> noData) {
  if (target.width < 1 || target.height < 1) {
    throw RangeError(std::to_string(target.width) + " x " + std::to_string(target.height) +
                     " is not a valid size: width and height must be at least 1");
  }
  return std::make_unique<ResizeRows>(source, target, filter, noData);
}

}  // namespace rasterkit
