#include <cstring>
#include <utility>

#include <rasterkit/bands/colors/looking_work.h>
#include <rasterkit/bands/combining.h>
#include <rasterkit/pictures/fitting/visible_work.h>
#include <rasterkit/pictures/own_stages.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/read_pixels.h>
#include <rasterkit/pictures/sources/sample_rows.h>
#include <rasterkit/raster/cut_out.h>

namespace rasterkit::detail {
namespace {

class MakeVisible : public BandStage {
 public:
  MakeVisible(Sides source, std::string noData, const NumberStretch& stretch)
      : BandStage(source), noData_(std::move(noData)), stretch_(stretch) {}

  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return MakeVisibleWork(like, Source(), noData_, stretch_);
  }
  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    if (std::holds_alternative<Raster>(source)) return source;
    return BandStage::Make(std::move(source), run, changes);
  }

 private:
  const std::string noData_;
  const NumberStretch stretch_;
};

class LayOver : public BandStage {
 public:
  LayOver(Sides source, std::shared_ptr<const Picture> other, const CombineOptions& options,
          const std::optional<Affine>& toOver)
      : BandStage(source), other_(std::move(other)), options_(options), toOver_(toOver) {}

  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun& run) const override {
    Combination combination;
    combination.mode = options_.mode;
    combination.percent = options_.percent;
    combination.gray = options_.gray;
    combination.toOver = toOver_;
    auto second = [other = other_](const StageRun& part, Changes& changes) {
      return VisibleRowsOf(*other, FlowOf(part), part, changes);
    };
    return StartCombining(like, Source(), combination, std::move(second), run);
  }

 private:
  const std::shared_ptr<const Picture> other_;
  const CombineOptions options_;
  const std::optional<Affine> toOver_;
};

Samples AsNumbers(Pixels pixels) {
  if (const auto* rows = std::get_if<Raster>(&pixels)) return SamplesOf(*rows);
  return std::get<Samples>(std::move(pixels));
}

/// What the pixels of a picture will be as numbers.
SecondKind KindOf(const Picture& picture) {
  const PictureState& state = PictureParts::State(picture);
  const DecodedKind decoded = PictureParts::Source(picture)->Kind();
  const bool isDecoded = state.stages.empty();
  const Pixels sample = SampleRows(isDecoded ? decoded.layout : state.layout,
                                   isDecoded ? decoded.isRaster : state.isRaster, 1, 1);
  return {AsNumbers(NewPixels(sample, 1, 1)).Layout(), {state.width, state.height}};
}

/// A work on numbers whose source are rows of a raster.
class NumbersFirst : public ForwardedWork {
 public:
  using ForwardedWork::ForwardedWork;

  void Make(const Band& source, Band& target, RowRange rows) const override {
    const BandRect part{source.left, rows.first, WidthOf(source.pixels), rows.count};
    const Band numbers{AsNumbers(CutBand(source, part).pixels), source.left, rows.first};
    ForwardedWork::Make(numbers, target, rows);
  }
};

class LayGridOver : public BandStage {
 public:
  LayGridOver(Sides source, std::shared_ptr<const Picture> other,
              const std::optional<double>& noData, Filter filter, const Affine& toOver)
      : BandStage(source),
        other_(std::move(other)),
        noData_(noData),
        filter_(filter),
        toOver_(toOver) {}

  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun& run) const override {
    GridCombination combination;
    combination.toOver = toOver_;
    combination.filter = filter_;
    combination.noData = noData_;
    combination.overNoData = NoDataOf(*PictureParts::Source(*other_));
    const SecondKind kind = KindOf(*other_);
    auto second = [other = other_](const StageRun& part, Changes& changes) {
      return detail::NumbersOf(*PictureParts::Source(*other), PictureParts::State(*other),
                               FlowOf(part), part, changes);
    };
    const auto start = [&](const Pixels& numbers) {
      return StartGridding(numbers, Source(), combination, kind, std::move(second), run);
    };
    if (std::holds_alternative<Samples>(like)) return start(like);
    return std::make_unique<NumbersFirst>(start(AsNumbers(NewPixels(like, 1, 1))));
  }

 private:
  const std::shared_ptr<const Picture> other_;
  const std::optional<double> noData_;
  const Filter filter_;
  const Affine toOver_;
};

Raster RowsOf(const TBitmap& bitmap, int first, int count) {
  Raster rows = CutOut(bitmap.Content(), {0, first, bitmap.Width(), first + count});
  // A bitmap keeps the transparent color beside its own rows.
  if (bitmap.Transparent()) rows.transparentColor = bitmap.TransparentColor();
  return rows;
}

class Shown : public BandWork {
 public:
  explicit Shown(std::shared_ptr<const TBitmap> pixels)
      : pixels_(std::move(pixels)), like_(RowsOf(*pixels_, 0, 1)) {}

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return {pixels_->Width(), pixels_->Height()}; }
  BandRect Needs(const BandRect&) const override { return {}; }
  void Make(const Band&, Band& target, RowRange rows) const override {
    auto& to = std::get<Raster>(target.pixels);
    for (int y = rows.first; y < rows.first + rows.count; ++y) {
      std::memcpy(to.Row(y - target.top), pixels_->ScanLine(y), to.Stride());
    }
  }

 private:
  const std::shared_ptr<const TBitmap> pixels_;
  const Pixels like_;
};

class Show : public Stage {
 public:
  explicit Show(std::shared_ptr<const TBitmap> pixels) : pixels_(std::move(pixels)) {}

  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels&, const StageRun&) const override {
    return std::make_unique<Shown>(pixels_);
  }
  Pixels Make(Pixels, const StageRun&, Changes&) const override {
    return RowsOf(*pixels_, 0, pixels_->Height());
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

std::unique_ptr<Stage> VisibleStage(Sides source, const std::string& noData,
                                    const NumberStretch& stretch) {
  return std::make_unique<MakeVisible>(source, noData, stretch);
}

std::unique_ptr<Stage> PictureOverStage(Sides source, std::shared_ptr<const Picture> other,
                                        const CombineOptions& options,
                                        const std::optional<Affine>& toOver) {
  return std::make_unique<LayOver>(source, std::move(other), options, toOver);
}

}  // namespace rasterkit::detail
