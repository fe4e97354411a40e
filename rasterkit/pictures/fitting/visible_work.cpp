#include <utility>

#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/codecs/pixel_view.h>
#include <rasterkit/pictures/fitting/visible_work.h>

namespace rasterkit::detail {
namespace {

class RowsAsTheyAre : public BandWork {
 public:
  RowsAsTheyAre(const Pixels& like, Sides size) : like_(NewPixels(like, 1, 1)), size_(size) {}

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return size_; }
  bool MakesParts() const override { return true; }
  BandRect Needs(const BandRect& target) const override { return target; }
  void Make(const Band& source, Band& target, RowRange rows) const override {
    const BandRect part{target.left - source.left, rows.first - source.top, WidthOf(target.pixels),
                        rows.count};
    CopyPart(source.pixels, part, target.pixels, 0, rows.first - target.top);
  }

 private:
  const Pixels like_;
  const Sides size_;
};

class VisibleWork : public BandWork {
 public:
  VisibleWork(const Samples& like, Sides size, const std::string& noData,
              const NumberStretch& stretch)
      : view_(like, noData, stretch), size_(size), like_(view_.Like().Clone()) {}

  RowRange Looks() const override {
    return view_.NeedsPass() ? RowRange{0, size_.height} : RowRange{};
  }
  void Look(const Band& rows, const StageRun& run) override {
    const auto& samples = std::get<Samples>(rows.pixels);
    ForRows(samples.Height(), PieceOf(samples.Height(), samples.Stride()), run, {},
            [&](int first, int last) { view_.Look(samples, first, last); });
  }
  void Decide() override { view_.EndPass(); }

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return size_; }
  BandRect Needs(const BandRect& target) const override {
    return {0, target.top, size_.width, target.height};
  }
  void Make(const Band& source, Band& target, RowRange rows) const override {
    view_.Show(std::get<Samples>(source.pixels), rows.first - source.top, rows.count,
               std::get<Raster>(target.pixels), rows.first - target.top);
  }
  void Finish(Changes& changes) override { view_.Report(changes); }

 private:
  PixelView view_;
  const Sides size_;
  const Pixels like_;
};

}  // namespace

std::unique_ptr<BandWork> MakeVisibleWork(const Pixels& like, Sides size, const std::string& noData,
                                          const NumberStretch& stretch) {
  if (std::holds_alternative<Raster>(like)) return std::make_unique<RowsAsTheyAre>(like, size);
  return std::make_unique<VisibleWork>(std::get<Samples>(like), size, noData, stretch);
}

}  // namespace rasterkit::detail
