#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include <rasterkit/bands/color_changes.h>
#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/raster/cut_out.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

void RequireNumber(const char* what, int number, int least, int most) {
  if (number >= least && number <= most) return;
  throw RangeError(std::string(what) + " is " + std::to_string(least) + " to " +
                   std::to_string(most) + ", not " + std::to_string(number));
}

/// Which rows decide about a row.
enum class Reach { row, neighbors, wholePicture };

/// Checks the numbers of a change, and says what it looks at.
struct Check {
  Reach operator()(const MakeGray&) const { return Reach::row; }
  Reach operator()(const MakeMono& change) const {
    if (!change.threshold) return Reach::wholePicture;
    RequireNumber("the threshold", *change.threshold, 0, 256);
    return Reach::row;
  }
  Reach operator()(const AdjustColors& change) const {
    for (const int value : {change.brightness, change.contrast, change.sharpen, change.red,
                            change.green, change.blue}) {
      RequireNumber("a percentage of colors", value, -100, 100);
    }
    return change.sharpen == 0 ? Reach::row : Reach::neighbors;
  }
  Reach operator()(const WhitenLight& change) const {
    RequireNumber("the threshold", change.threshold, 0, 255);
    return Reach::row;
  }
  Reach operator()(const RecolorByGray& change) const {
    RequireNumber("the threshold", change.threshold, 0, 255);
    if (change.alpha) RequireNumber("the opacity", *change.alpha, 0, 255);
    return Reach::row;
  }
  Reach operator()(const ReplaceKeyColor&) const { return Reach::wholePicture; }
  Reach operator()(const WhiteForPdf&) const { return Reach::wholePicture; }
  Reach operator()(const PaintTransparency&) const { return Reach::row; }
  Reach operator()(const SwapOpacity&) const { return Reach::row; }
  Reach operator()(const SetPaletteEntries& change) const {
    return change.first ? Reach::wholePicture : Reach::row;
  }
  Reach operator()(const SetBits& change) const {
    for (const int bits : {1, 4, 8, 15, 16, 24, 32}) {
      if (bits == change.bits) return bits <= 8 ? Reach::wholePicture : Reach::row;
    }
    throw RangeError("a picture has 1, 4, 8, 24 or 32 bits per pixel, not " +
                     std::to_string(change.bits));
  }
};

class ChangeColorsOfRows : public Stage {
 public:
  ChangeColorsOfRows(Sides source, const ColorChange& change)
      : source_(source), change_(change), reach_(std::visit(Check(), change)) {}

  RowRange Needs(RowRange target) const override {
    if (target.count == 0 || reach_ == Reach::row) return target;
    if (reach_ == Reach::wholePicture) return {0, source_.height};
    const int first = std::max(0, target.first - 1);
    return {first, std::min(source_.height, target.first + target.count + 1) - first};
  }

  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    detail::RequireSides(source, source_);
    auto* raster = std::get_if<Raster>(&source);
    if (raster == nullptr) {
      throw UnsupportedError("colors are changed in pictures of 1 to 32 bits per pixel only");
    }
    const bool hadKey = raster->transparentColor.has_value();
    const int piece = detail::PieceOf(source_.height, raster->Stride());
    const bool isInPieces = reach_ != Reach::wholePicture && piece < source_.height;
    Raster made = isInPieces ? InPieces(*raster, piece, run) : Changed(std::move(*raster), run);
    const bool setsEntries = std::holds_alternative<SetPaletteEntries>(change_);
    if (setsEntries && hadKey && !made.transparentColor) {
      changes.Lose(LossKind::transparentColor, "the transparent color",
                   "its palette entry got another color");
    }
    if (run.progress) run.progress(1);
    return made;
  }

 private:
  Raster Changed(Raster raster, const StageRun& run) const {
    auto bitmap = std::make_unique<TBitmap>(std::move(raster));
    std::visit([&](const auto& change) { detail::Change(change, bitmap, run); }, change_);
    Raster made = bitmap->TakeContent();
    // Black and white rows come with ones after the last pixel.
    made.ClearPadding();
    return made;
  }

  /// The changed rows `first` to `last - 1`, perhaps with some around them.
  Raster ChangedRows(const Raster& source, int first, int last, int& skipped) const {
    const RowRange needs = Needs({first, last - first});
    skipped = first - needs.first;
    return Changed(CutOut(source, {0, needs.first, source_.width, needs.first + needs.count}), {});
  }

  /// The kind of the result does not depend on the rows: all pieces have that of the first one.
  Raster InPieces(const Raster& source, int piece, const StageRun& run) const {
    int skipped = 0;
    const Raster start = ChangedRows(source, 0, 1, skipped);
    Raster target(start.Format(), source_.width, source_.height);
    target.CopyProperties(start);
    detail::ForRows(source_.height, piece, run, {}, [&](int first, int last) {
      int above = 0;
      const Raster part = ChangedRows(source, first, last, above);
      const size_t bytes = static_cast<size_t>(last - first) * target.Stride();
      std::memcpy(target.Row(first), part.Row(above), bytes);
    });
    return target;
  }

  const Sides source_;
  const ColorChange change_;
  const Reach reach_;
};

}  // namespace

std::unique_ptr<Stage> ChangeStage(Sides source, const ColorChange& change) {
  return std::make_unique<ChangeColorsOfRows>(source, change);
}

}  // namespace rasterkit
