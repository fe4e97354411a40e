#include <algorithm>
#include <string>
#include <thread>
#include <utility>

#include <rasterkit/bands/colors/index_pixels.h>
#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit {
namespace {

using namespace detail;

TRect AllOf(const TBitmap& bitmap) {
  return {0, 0, bitmap.Width(), bitmap.Height()};
}

/// Palette colors are not averaged: thin lines of a plan would fade.
std::unique_ptr<TBitmap> Stretched(TBitmap source, Sides sides) {
  const bool isDrawing = HasIndexes(source);
  KeyToAlpha(source);
  if (!HasAlpha(source)) source.SetPixelFormat(pf24bit);
  if (source.Width() == sides.width && source.Height() == sides.height) {
    return std::make_unique<TBitmap>(std::move(source));
  }
  auto target = std::make_unique<TBitmap>();
  target->ResetPixels(source.PixelFormat(), sides.width, sides.height);
  target->CarryFrom(source, {.resolution = false,
                             .profile = false,
                             .palette = false,
                             .transparency = CarriedTransparency::none});
  target->Canvas().StretchMode = isDrawing ? smPlain : smHalftone;
  target->Canvas().CopyStretched(AllOf(*target), source);
  return target;
}

/// As `Stretched`, along an affine: drawings by nearest pixels, others interpolated; transparent
/// beyond the edges.
std::unique_ptr<TBitmap> Placed(Raster over, const Affine& toOver, Sides sides,
                                const StageRun& run) {
  Resampling how;
  how.filter = IsIndexed(over.Format()) ? Filter::nearest : Filter::linear;
  how.fill.kind = Fill::Kind::transparent;
  TBitmap opaque(std::move(over));
  MakeAlphaChannel(opaque);
  Raster source = opaque.TakeContent();
  const Sides from{source.Width(), source.Height()};
  Changes changes;
  Pixels placed =
      AffineStage(from, toOver, sides, how)->Make(std::move(source), {run.threads, {}}, changes);
  return std::make_unique<TBitmap>(std::move(std::get<Raster>(placed)));
}

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
void Transfer(TBitmap& under, TBitmap& over, const Combination& combination, int threads,
              const TProgressEvent& progress) {
  constexpr int kRowsOfThread = 4;
  const int count = std::clamp(threads, 1, std::max(1, under.Height() / kRowsOfThread));
  const TRect all = AllOf(under);
  if (combination.mode == CombineMode::intoWhite) {
    return AssignInWhite(&under, &over, all, all, 0, count, progress);
  }
  AssignPartBitmap(&under, &over, all, all, count, progress, EngineMode(combination.mode),
                   combination.percent, combination.gray, false);
}

/// A watermark counts every color by its darkness.
void Press(std::unique_ptr<TBitmap>& under, std::unique_ptr<TBitmap> mark) {
  if (HasTransparency(*mark)) DropTransparency(mark, clWhite);
  mark->SetPixelFormat(pf24bit);
  BitmapToGray(mark.get(), false);
  const AlphaPlane alphas(*under);
  auto marked = WaterMarkedBitmap(*under, *mark);
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

/// The engine reports on its workers' threads too.
TProgressEvent EventOf(const StageRun& run) {
  if (!run.progress) return nullptr;
  return [&run, own = std::this_thread::get_id(), last = 0.0f](float percent) mutable {
    if (std::this_thread::get_id() != own || percent < last) return;
    last = percent;
    run.progress(percent / 100);
  };
}

class CombineRows : public Stage {
 public:
  CombineRows(Sides source, Combination combination)
      : source_(source), combination_(std::move(combination)) {}

  RowRange Needs(RowRange target) const override { return target; }

  Pixels Make(Pixels source, const StageRun& run, Changes&) const override {
    RequireSides(source, source_);
    auto* raster = std::get_if<Raster>(&source);
    if (raster == nullptr) {
      throw UnsupportedError("pictures of 1 to 32 bits per pixel only are combined");
    }
    auto under = std::make_unique<TBitmap>(std::move(*raster));
    Combine(under, run);
    if (run.progress) run.progress(1);
    return under->TakeContent();
  }

 private:
  void Combine(std::unique_ptr<TBitmap>& under, const StageRun& run) const {
    if (combination_.mode == CombineMode::watermark) {
      auto mark =
          combination_.toOver ? Over(run) : std::make_unique<TBitmap>(combination_.over->Clone());
      return Press(under, std::move(mark));
    }
    if (HasTransparency(*under)) DropTransparency(under, clWhite);
    under->SetPixelFormat(pf24bit);
    under->SetTransparent(false);
    auto over = Over(run);
    if (combination_.mode == CombineMode::key) {
      return DrawKeyed(*under, *over, combination_.percent);
    }
    std::optional<PixelsBeyond> beyond;
    if (combination_.toOver) beyond.emplace(*under, *over);
    if (HasAlpha(*over)) DropTransparency(over, clWhite);
    Transfer(*under, *over, combination_, run.threads, EventOf(run));
    if (beyond) beyond->Restore(*under);
  }

  std::unique_ptr<TBitmap> Over(const StageRun& run) const {
    Raster over = combination_.over->Clone();
    if (combination_.toOver) return Placed(std::move(over), *combination_.toOver, source_, run);
    return Stretched(TBitmap(std::move(over)), source_);
  }

  const Sides source_;
  const Combination combination_;
};

}  // namespace

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
