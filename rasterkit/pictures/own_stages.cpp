#include <utility>

#include <rasterkit/bands/stages.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/pictures/own_stages.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/read_pixels.h>

namespace rasterkit::detail {
namespace {

class MakeVisible : public Stage {
 public:
  MakeVisible(std::string noData, const NumberStretch& stretch)
      : noData_(std::move(noData)), stretch_(stretch) {}

  RowRange Needs(RowRange target) const override { return target; }
  Pixels Make(Pixels source, const StageRun&, Changes& changes) const override {
    if (std::holds_alternative<Raster>(source)) return source;
    return VisiblePixels(std::move(source), noData_, changes, stretch_);
  }

 private:
  const std::string noData_;
  const NumberStretch stretch_;
};

class LayOver : public Stage {
 public:
  LayOver(Sides source, std::shared_ptr<const Picture> other, const CombineOptions& options,
          const std::optional<Affine>& toOver)
      : source_(source), other_(std::move(other)), options_(options), toOver_(toOver) {}

  RowRange Needs(RowRange target) const override { return target; }
  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    Combination combination;
    combination.over = std::make_shared<const Raster>(
        VisibleRowsOf(*other_, FlowOf(run), {run.threads, {}}, changes));
    combination.mode = options_.mode;
    combination.percent = options_.percent;
    combination.gray = options_.gray;
    combination.toOver = toOver_;
    return CombineStage(source_, combination)->Make(std::move(source), run, changes);
  }

 private:
  const Sides source_;
  const std::shared_ptr<const Picture> other_;
  const CombineOptions options_;
  const std::optional<Affine> toOver_;
};

Samples AsNumbers(Pixels pixels) {
  if (const auto* rows = std::get_if<Raster>(&pixels)) return SamplesOf(*rows);
  return std::get<Samples>(std::move(pixels));
}

class LayGridOver : public Stage {
 public:
  LayGridOver(Sides source, std::shared_ptr<const Picture> other,
              const std::optional<double>& noData, Filter filter, const Affine& toOver)
      : source_(source),
        other_(std::move(other)),
        noData_(noData),
        filter_(filter),
        toOver_(toOver) {}

  RowRange Needs(RowRange target) const override { return target; }
  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    const PictureSource& over = *PictureParts::Source(*other_);
    GridCombination combination;
    combination.over = std::make_shared<const Samples>(detail::NumbersOf(
        over, PictureParts::State(*other_), FlowOf(run), {run.threads, {}}, changes));
    combination.toOver = toOver_;
    combination.filter = filter_;
    combination.noData = noData_;
    combination.overNoData = NoDataOf(over);
    return GridStage(source_, combination)->Make(AsNumbers(std::move(source)), run, changes);
  }

 private:
  const Sides source_;
  const std::shared_ptr<const Picture> other_;
  const std::optional<double> noData_;
  const Filter filter_;
  const Affine toOver_;
};

class Show : public Stage {
 public:
  explicit Show(std::shared_ptr<const TBitmap> pixels) : pixels_(std::move(pixels)) {}

  RowRange Needs(RowRange target) const override { return target; }
  Pixels Make(Pixels, const StageRun&, Changes&) const override {
    Raster rows = pixels_->Content().Clone();
    // A bitmap keeps the transparent color beside its own rows.
    if (pixels_->Transparent()) rows.transparentColor = pixels_->TransparentColor();
    return rows;
  }

 private:
  const std::shared_ptr<const TBitmap> pixels_;
};

}  // namespace

std::unique_ptr<Stage> GridOverStage(Sides source, std::shared_ptr<const Picture> other,
                                     const std::optional<double>& noData, Filter filter,
                                     const Affine& toOver) {
  return std::make_unique<LayGridOver>(source, std::move(other), noData, filter, toOver);
}

std::unique_ptr<Stage> ShownStage(std::shared_ptr<const TBitmap> pixels) {
  return std::make_unique<Show>(std::move(pixels));
}

std::unique_ptr<Stage> VisibleStage(const std::string& noData, const NumberStretch& stretch) {
  return std::make_unique<MakeVisible>(noData, stretch);
}

std::unique_ptr<Stage> PictureOverStage(Sides source, std::shared_ptr<const Picture> other,
                                        const CombineOptions& options,
                                        const std::optional<Affine>& toOver) {
  return std::make_unique<LayOver>(source, std::move(other), options, toOver);
}

}  // namespace rasterkit::detail
