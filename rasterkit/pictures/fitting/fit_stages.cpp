#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include <rasterkit/bands/colors/looking_work.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/pictures/fitting/fit_stages.h>
#include <rasterkit/pictures/fitting/visible_work.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// A work that makes each row of the same row of its source.
class RowByRow : public BandWork {
 public:
  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return sides_; }
  BandRect Needs(const BandRect& target) const override { return target; }

 protected:
  RowByRow(Sides sides, Pixels like) : sides_(sides), like_(std::move(like)) {}

 private:
  const Sides sides_;
  const Pixels like_;
};

/// The rows of the band that these rows of the target are made of, as pixels of their own.
Pixels RowsOf(const Band& source, const Band& target, RowRange rows) {
  return CutBand(source, {target.left, rows.first, WidthOf(target.pixels), rows.count}).pixels;
}

/// A pixel of this kind that is 0.
Pixels PixelLike(const Pixels& like) {
  Pixels pixel = NewPixels(like, 1, 1);
  std::visit([](auto& rows) { std::memset(rows.Row(0), 0, rows.Stride()); }, pixel);
  return pixel;
}

template <class Number>
void WidenRow(const uint8_t* source, uint8_t* target, size_t count, int bits) {
  constexpr uint32_t kMost = std::numeric_limits<Number>::max();
  const uint32_t most = (1u << bits) - 1;
  const auto* const from = reinterpret_cast<const Number*>(source);
  auto* const to = reinterpret_cast<Number*>(target);
  for (size_t i = 0; i < count; ++i) {
    to[i] = static_cast<Number>((uint64_t{from[i]} * kMost + most / 2) / most);
  }
}

Pixels WidenedLike(const Pixels& like) {
  Pixels wide = NewPixels(like, 1, 1);
  PixelLayout& layout = std::get<Samples>(wide).Layout();
  layout.bits = 8 * BytesOf(layout.type);
  return wide;
}

class WidenWork : public RowByRow {
 public:
  WidenWork(Sides sides, const Pixels& like)
      : RowByRow(sides, WidenedLike(like)), bits_(std::get<Samples>(like).Layout().bits) {}

  bool MakesParts() const override { return true; }
  void Make(const Band& source, Band& target, RowRange rows) const override {
    const auto& from = std::get<Samples>(source.pixels);
    auto& to = std::get<Samples>(target.pixels);
    const bool isByte = to.Layout().type == NumberType::uint8;
    const size_t bytes = static_cast<size_t>(to.Width()) * to.PixelBytes();
    const size_t skipped = static_cast<size_t>(target.left - source.left) * from.PixelBytes();
    for (int plane = 0; plane < to.Planes(); ++plane) {
      for (int y = rows.first; y < rows.first + rows.count; ++y) {
        const uint8_t* const row = from.Row(y - source.top, plane) + skipped;
        uint8_t* const wide = to.Row(y - target.top, plane);
        if (isByte) {
          WidenRow<uint8_t>(row, wide, bytes, bits_);
        } else {
          WidenRow<uint16_t>(row, wide, bytes / sizeof(uint16_t), bits_);
        }
      }
    }
  }

 private:
  const int bits_;
};

class Widen : public BandStage {
 public:
  explicit Widen(Sides source) : BandStage(source) {}

  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return std::make_unique<WidenWork>(Source(), like);
  }
};

class ShowWork : public ForwardedWork {
 public:
  ShowWork(std::unique_ptr<BandWork> work, bool isSample)
      : ForwardedWork(std::move(work)), isSample_(isSample) {}

  void Finish(Changes& changes) override {
    Changes seen;
    ForwardedWork::Finish(seen);
    for (Loss& loss : seen.losses) changes.losses.push_back(std::move(loss));
    for (std::string& note : seen.notes) {
      if (!isSample_) changes.Note(std::move(note));
    }
  }

 private:
  const bool isSample_;
};

class Show : public BandStage {
 public:
  Show(Sides source, const PixelFit& fit) : BandStage(source), fit_(fit) {}

  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return std::make_unique<ShowWork>(MakeVisibleWork(like, Source(), fit_.noData, fit_.stretch),
                                      fit_.isSample);
  }

 private:
  const PixelFit fit_;
};

void LoseOpacity(const Raster& rows, PictureType type, Changes& changes) {
  const bool hasAlpha = rows.Format() == pf32bit && rows.alphaFormat == afDefined;
  changes.Lose(hasAlpha ? LossKind::alpha : LossKind::transparentColor,
               hasAlpha ? "the alpha channel" : "the transparent color",
               NameInLosses(type) + " holds no opacity: painted onto the background");
}

/// Painted pixels without the mark of a transparent color, which no format has that needs paint.
Pixels WithoutMark(Pixels pixels) {
  std::get<Raster>(pixels).transparentColor.reset();
  return pixels;
}

class PaintWork : public ForwardedWork {
 public:
  PaintWork(std::unique_ptr<BandWork> change, const Pixels& like, PictureType type)
      : ForwardedWork(std::move(change)), like_(PixelLike(like)), type_(type) {}

  const Pixels& Like() const override {
    if (!painted_) painted_ = WithoutMark(NewPixels(ForwardedWork::Like(), 1, 1));
    return *painted_;
  }
  void Finish(Changes& changes) override {
    LoseOpacity(std::get<Raster>(like_), type_, changes);
    Changes painted;
    ForwardedWork::Finish(painted);
    changes.losses.insert(changes.losses.end(), painted.losses.begin(), painted.losses.end());
  }

 private:
  const Pixels like_;
  const PictureType type_;
  mutable std::optional<Pixels> painted_;
};

class Paint : public Stage {
 public:
  Paint(Sides source, const PixelFit& fit)
      : change_(ChangeStage(source, PaintTransparency{fit.background})), type_(fit.type) {}

  RowRange Needs(RowRange target) const override { return change_->Needs(target); }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun& run) const override {
    std::unique_ptr<BandWork> work = change_->Start(like, run);
    if (!work) return nullptr;
    return std::make_unique<PaintWork>(std::move(work), like, type_);
  }
  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    LoseOpacity(std::get<Raster>(source), type_, changes);
    Changes painted;
    Pixels made = WithoutMark(change_->Make(std::move(source), run, painted));
    changes.losses.insert(changes.losses.end(), painted.losses.begin(), painted.losses.end());
    return made;
  }

 private:
  const std::unique_ptr<Stage> change_;
  const PictureType type_;
};

bool IsGrayPalette(const Raster& rows) {
  const auto entries = rows.palette.Entries();
  return !entries.empty() && std::all_of(entries.begin(), entries.end(), [](const auto& entry) {
    return entry.peRed == entry.peGreen && entry.peRed == entry.peBlue;
  });
}

/// True color, or the ramp of grays that a JPEG file needs. Grays come by way of true color, so
/// that each gets its own index.
Raster Converted(const Raster& rows, PictureType type) {
  const bool isGray = type == PictureType::jpeg && IsIndexed(rows.Format()) && IsGrayPalette(rows);
  Raster colors = ConvertRaster(rows, pf24bit);
  return isGray ? ConvertRaster(colors, pf8bit) : std::move(colors);
}

class FormatWork : public RowByRow {
 public:
  FormatWork(Sides sides, const Pixels& like, PictureType type)
      : RowByRow(sides, Converted(std::get<Raster>(PixelLike(like)), type)), type_(type) {}

  void Make(const Band& source, Band& target, RowRange rows) const override {
    const Pixels made = Converted(std::get<Raster>(RowsOf(source, target, rows)), type_);
    CopyPart(made, {0, 0, WidthOf(made), rows.count}, target.pixels, 0, rows.first - target.top);
  }

 private:
  const PictureType type_;
};

class ChangeFormat : public BandStage {
 public:
  ChangeFormat(Sides source, PictureType type) : BandStage(source), type_(type) {}

  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return std::make_unique<FormatWork>(Source(), like, type_);
  }

 private:
  const PictureType type_;
};

class Same : public RowByRow {
 public:
  Same(Sides sides, const Pixels& like) : RowByRow(sides, PixelLike(like)) {}

  bool MakesParts() const override { return true; }
  void Make(const Band& source, Band& target, RowRange rows) const override {
    CopyPart(
        source.pixels,
        {target.left - source.left, rows.first - source.top, WidthOf(target.pixels), rows.count},
        target.pixels, 0, rows.first - target.top);
  }
};

class LosingWork : public ForwardedWork {
 public:
  LosingWork(std::unique_ptr<BandWork> work, std::shared_ptr<Changes> lost)
      : ForwardedWork(std::move(work)), lost_(std::move(lost)) {}

  void Finish(Changes&) override { ForwardedWork::Finish(*lost_); }

 private:
  const std::shared_ptr<Changes> lost_;
};

class PartOfFit : public Stage {
 public:
  PartOfFit(Sides source, FitPart part, std::shared_ptr<Changes> lost)
      : source_(source), part_(std::move(part)), lost_(std::move(lost)) {}

  RowRange Needs(RowRange target) const override { return part_.stage->Needs(target); }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun& run) const override {
    if (!part_.isNeeded(like)) return std::make_unique<Same>(source_, like);
    std::unique_ptr<BandWork> work = part_.stage->Start(like, run);
    if (!work) return nullptr;
    return std::make_unique<LosingWork>(std::move(work), lost_);
  }
  Pixels Make(Pixels source, const StageRun& run, Changes&) const override {
    if (!part_.isNeeded(source)) return source;
    return part_.stage->Make(std::move(source), run, *lost_);
  }

 private:
  const Sides source_;
  const FitPart part_;
  const std::shared_ptr<Changes> lost_;
};

}  // namespace

std::string NameInLosses(PictureType type) {
  switch (type) {
    case PictureType::bmp:
      return "a BMP file";
    case PictureType::jpeg:
      return "a JPEG file";
    case PictureType::png:
      return "a PNG file";
    default:
      return "the file";
  }
}

std::unique_ptr<Stage> ShowStage(Sides source, const PixelFit& fit) {
  return std::make_unique<Show>(source, fit);
}

std::unique_ptr<Stage> WidenStage(Sides source, const PixelFit&) {
  return std::make_unique<Widen>(source);
}

std::unique_ptr<Stage> PaintStage(Sides source, const PixelFit& fit) {
  return std::make_unique<Paint>(source, fit);
}

std::unique_ptr<Stage> FormatStage(Sides source, PictureType type) {
  return std::make_unique<ChangeFormat>(source, type);
}

std::unique_ptr<Stage> StageOf(Sides source, FitPart part, std::shared_ptr<Changes> lost) {
  return std::make_unique<PartOfFit>(source, std::move(part), std::move(lost));
}

}  // namespace rasterkit::detail
