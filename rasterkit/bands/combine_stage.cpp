#include <algorithm>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <rasterkit/bands/colors/color_reader.h>
#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/bands/colors/placed_rows.h>
#include <rasterkit/bands/colors/row_rule.h>
#include <rasterkit/bands/combining.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/raster/cut_out.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit {
namespace {

using namespace detail;

TRect AllOf(const TBitmap& bitmap) {
  return {0, 0, bitmap.Width(), bitmap.Height()};
}

/// The picture that is laid over, made ready once: its rows as they lie over the rows below.
class OverRows {
 public:
  OverRows(Raster over, const std::optional<Affine>& toOver, Sides sides, const StageRun& run)
      : sides_(sides), isDrawing_(IsIndexed(over.Format())) {
    TBitmap bitmap(std::move(over));
    if (toOver) {
      Place(std::move(bitmap), *toOver, run);
      return;
    }
    // A drawing stays as small as it is until its rows are needed.
    if (!isDrawing_) MakeColors(bitmap);
    stretched_ = std::make_unique<TBitmap>(std::move(bitmap));
  }

  std::unique_ptr<TBitmap> Rows(int first, int count) const {
    if (placed_) {
      return std::make_unique<TBitmap>(std::get<Raster>(placed_->Rows(first, count)));
    }
    std::unique_ptr<TBitmap> rows = Stretched(first, count);
    if (isDrawing_) MakeColors(*rows);
    return rows;
  }

 private:
  static void MakeColors(TBitmap& bitmap) {
    KeyToAlpha(bitmap);
    if (!HasAlpha(bitmap)) bitmap.SetPixelFormat(pf24bit);
  }

  /// Drawings by nearest pixels, others interpolated; transparent beyond the edges.
  void Place(TBitmap bitmap, const Affine& toOver, const StageRun& run) {
    Resampling how;
    how.filter = isDrawing_ ? Filter::nearest : Filter::linear;
    how.fill.kind = Fill::Kind::transparent;
    MakeAlphaChannel(bitmap);
    Raster source = bitmap.TakeContent();
    const Sides from{source.Width(), source.Height()};
    placed_ = std::make_unique<PlacedRows>(std::move(source),
                                           AffineStage(from, toOver, sides_, how), run);
  }

  /// Palette colors are not averaged: thin lines of a plan would fade.
  std::unique_ptr<TBitmap> Stretched(int first, int count) const {
    const TBitmap& source = *stretched_;
    if (source.Width() == sides_.width && source.Height() == sides_.height) {
      auto rows = std::make_unique<TBitmap>(
          CutOut(source.Content(), {0, first, sides_.width, first + count}));
      rows->AssignTransparency(source);
      return rows;
    }
    auto target = std::make_unique<TBitmap>();
    target->ResetPixels(source.PixelFormat(), sides_.width, count);
    target->CarryFrom(source, {.resolution = false, .profile = false});
    target->Canvas().StretchMode = isDrawing_ ? smPlain : smHalftone;
    target->Canvas().CopyStretched({0, -first, sides_.width, sides_.height - first}, source);
    return target;
  }

  const Sides sides_;
  const bool isDrawing_;
  std::unique_ptr<TBitmap> stretched_;
  std::unique_ptr<PlacedRows> placed_;
};

void DrawKeyed(TBitmap& under, const TBitmap& over, int percent) {
  TBlendFunction blend;
  blend.SourceConstantAlpha = static_cast<uint8_t>((255 * (100 - percent) + 50) / 100);
  blend.PerPixelAlpha = HasAlpha(over);
  if (blend.PerPixelAlpha) return under.Canvas().AlphaBlend(AllOf(under), over, AllOf(over), blend);
  // Where white is skipped, both pictures are equal, and blending changes nothing.
  const auto drawn = under.Clone();
  drawn->Canvas().TransparentBlt(AllOf(*drawn), over, AllOf(over), clWhite);
  under.Canvas().AlphaBlend(AllOf(under), *drawn, AllOf(*drawn), blend);
}

TPixelMode EngineMode(CombineMode mode) {
  if (mode == CombineMode::transparent) return pmTransparent;
  return mode == CombineMode::shadow ? pmShadow : pmOverwrite;
}

/// Both are 24-bit and of the same size, and the rectangles cover them completely: nothing is
/// scaled, and the last row and column are included.
void Transfer(TBitmap& under, TBitmap& over, const Combination& combination) {
  const TRect all = AllOf(under);
  if (combination.mode == CombineMode::intoWhite) {
    return AssignInWhite(&under, &over, all, all, 0, 1, nullptr);
  }
  AssignPartBitmap(&under, &over, all, all, 1, nullptr, EngineMode(combination.mode),
                   combination.percent, combination.gray, false);
}

/// A watermark counts every color by its darkness: it becomes 8-bit gray, painted onto white.
void MakeMark(std::unique_ptr<TBitmap>& mark) {
  Raster source = mark->TakeContent();
  const ColorReader reader(source, source.Width());
  Raster grays(pf8bit, source.Width(), source.Height());
  grays.palette = GrayPalette(256);
  std::vector<uint8_t> colors(3 * reader.Width());
  for (int y = 0; y < source.Height(); ++y) {
    RequireTime();
    reader.Painted(source.Row(y), clWhite, colors.data());
    kernels::GrayOfRow24(colors.data(), reader.Width(), grays.Row(y));
  }
  mark = std::make_unique<TBitmap>(std::move(grays));
}

/// Rows of a picture, and the row at which they lie in a picture of `height` rows.
struct Rows {
  int top = 0, height = 0;
};

void Press(std::unique_ptr<TBitmap>& under, const TBitmap& mark, const Rows& place) {
  const AlphaPlane alphas(*under);
  auto marked = std::make_unique<TBitmap>();
  marked->Assign(under.get());
  marked->SetPixelFormat(pf24bit);
  if (!mark.Empty()) PressWatermark(mark, place.top, place.height, *marked);
  marked->CarryFrom(
      *under, {.palette = false, .alphaFormat = false, .transparency = CarriedTransparency::none});
  under = std::move(marked);
  alphas.Restore(*under);
}

/// White where a placed picture has no pixels may change near-white pixels of the lower picture:
/// they are put back.
class PixelsBeyond {
 public:
  PixelsBeyond(const TBitmap& under, const TBitmap& over)
      : before_(under.Clone()), share_(PixelsOf(over)), opacities_(PixelsOf(over)) {
    auto opacity = opacities_.begin();
    for (int y = 0; y < over.Height(); ++y) {
      const auto* row = reinterpret_cast<const RGBArec*>(over.ScanLine(y));
      opacity = std::transform(row, row + over.Width(), opacity,
                               [](const RGBArec& pixel) { return pixel.a; });
    }
  }

  void Restore(TBitmap& under) const {
    auto opacity = opacities_.begin();
    for (int y = 0; y < under.Height(); ++y) {
      auto* row = reinterpret_cast<RGBrec*>(under.ScanLine(y));
      const auto* before = reinterpret_cast<const RGBrec*>(std::as_const(*before_).ScanLine(y));
      for (int x = 0; x < under.Width(); ++x, ++opacity) {
        if (*opacity == 0) row[x] = before[x];
      }
    }
  }

 private:
  static size_t PixelsOf(const TBitmap& over) {
    return static_cast<size_t>(over.Width()) * static_cast<size_t>(over.Height());
  }

  std::unique_ptr<TBitmap> before_;
  /// Of the opacities.
  MemoryShare share_;
  std::vector<uint8_t> opacities_;
};

class Combining : public BandWork {
 public:
  Combining(const Raster& like, Sides size, Combination combination, SecondPicture second,
            const StageRun& run)
      : size_(size),
        combination_(std::move(combination)),
        second_(std::move(second)),
        run_{run.threads, {}},
        like_(KindOf(like)) {}

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return size_; }
  BandRect Needs(const BandRect& target) const override {
    return {0, target.top, size_.width, target.height};
  }

  void Make(const Band& source, Band& target, RowRange rows) const override {
    std::call_once(ready_, [this] { Prepare(); });
    const auto& from = std::get<Raster>(source.pixels);
    auto& to = std::get<Raster>(target.pixels);
    const int top = rows.first - source.top;
    auto under = std::make_unique<TBitmap>(CutOut(from, {0, top, size_.width, top + rows.count}));
    if (mark_) {
      Press(under, *mark_, {rows.first, size_.height});
    } else {
      Combine(under, over_->Rows(rows.first, rows.count));
    }
    for (int y = 0; y < rows.count; ++y) {
      const int row = rows.first - target.top + y;
      std::memcpy(to.Row(row), under->ScanLine(y), to.RowBytes());
      ClearRowEnd(to, row);
    }
  }

  void Finish(Changes& changes) override {
    for (const Loss& loss : changes_.losses) changes.losses.push_back(loss);
    for (const std::string& note : changes_.notes) changes.notes.push_back(note);
  }

 private:
  bool IsWatermark() const { return combination_.mode == CombineMode::watermark; }

  /// The kind of the result is seen on one pixel below another one.
  Raster KindOf(const Raster& like) const {
    auto under = std::make_unique<TBitmap>(SmallLike(like, 1, 1));
    if (IsWatermark()) {
      Press(under, TBitmap(), {0, 1});
    } else {
      auto over = std::make_unique<TBitmap>();
      over->ResetPixels(pf24bit, 1, 1);
      std::memset(over->ScanLine(0), 0, over->Stride());
      Combine(under, std::move(over));
    }
    return under->TakeContent();
  }

  void Prepare() const {
    Raster second = second_(run_, changes_);
    if (IsWatermark() && !combination_.toOver) {
      mark_ = std::make_unique<TBitmap>(std::move(second));
      return MakeMark(mark_);
    }
    over_ = std::make_unique<OverRows>(std::move(second), combination_.toOver, size_, run_);
  }

  /// Both have the same rows.
  void Combine(std::unique_ptr<TBitmap>& under, std::unique_ptr<TBitmap> over) const {
    if (IsWatermark()) {
      MakeMark(over);
      return Press(under, *over, {0, under->Height()});
    }
    if (HasTransparency(*under)) DropTransparency(under, clWhite);
    under->SetPixelFormat(pf24bit);
    under->SetTransparent(false);
    if (combination_.mode == CombineMode::key) {
      return DrawKeyed(*under, *over, combination_.percent);
    }
    std::optional<PixelsBeyond> beyond;
    if (combination_.toOver && HasAlpha(*over)) beyond.emplace(*under, *over);
    if (HasAlpha(*over)) DropTransparency(over, clWhite);
    Transfer(*under, *over, combination_);
    if (beyond) beyond->Restore(*under);
  }

  const Sides size_;
  const Combination combination_;
  const SecondPicture second_;
  const StageRun run_;
  const Pixels like_;
  /// The second picture is made ready with the first rows.
  mutable std::once_flag ready_;
  mutable Changes changes_;
  mutable std::unique_ptr<OverRows> over_;
  mutable std::unique_ptr<TBitmap> mark_;
};

class CombineRows : public BandStage {
 public:
  CombineRows(Sides source, Combination combination)
      : BandStage(source), combination_(std::move(combination)) {}

  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun& run) const override {
    auto second = [over = combination_.over](const StageRun&, Changes&) { return over->Clone(); };
    return StartCombining(like, Source(), combination_, second, run);
  }

 private:
  const Combination combination_;
};

}  // namespace

std::unique_ptr<BandWork> detail::StartCombining(const Pixels& like, Sides size,
                                                 const Combination& combination,
                                                 SecondPicture second, const StageRun& run) {
  const auto* const raster = std::get_if<Raster>(&like);
  if (raster == nullptr) {
    throw UnsupportedError("pictures of 1 to 32 bits per pixel only are combined");
  }
  return std::make_unique<Combining>(*raster, size, combination, std::move(second), run);
}

std::unique_ptr<Stage> CombineStage(Sides source, const Combination& combination) {
  if (!combination.over) throw RangeError("there is no picture to combine with");
  if (combination.mode == CombineMode::grid) {
    throw RangeError("numbers are combined as grids (see GridStage)");
  }
  if (combination.percent < 0 || combination.percent > 100) {
    throw RangeError("the percentage is 0 to 100, not " + std::to_string(combination.percent));
  }
  Combination known = combination;
  if (known.mode == CombineMode::automatic) known.mode = CombineMode::key;
  return std::make_unique<CombineRows>(source, std::move(known));
}

}  // namespace rasterkit
