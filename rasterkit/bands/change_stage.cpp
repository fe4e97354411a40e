#include <algorithm>
#include <string>
#include <utility>

#include <rasterkit/bands/change_works.h>
#include <rasterkit/bands/colors/looking_work.h>
#include <rasterkit/bands/stages.h>
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
  Reach operator()(const UsePalette& change) const {
    if (change.palette.Count() == 0) throw RangeError("a palette has 1 to 256 entries");
    return Reach::row;
  }
};

constexpr const char* kRastersOnly =
    "colors are changed in pictures of 1 to 32 bits per pixel only";

/// Says when the palette lost the transparent color.
class EntriesWork : public detail::ForwardedWork {
 public:
  EntriesWork(std::unique_ptr<BandWork> work, bool hadKey)
      : ForwardedWork(std::move(work)), hadKey_(hadKey) {}

  void Finish(Changes& changes) override {
    if (!hadKey_ || std::get<Raster>(Like()).transparentColor) return;
    changes.Lose(LossKind::transparentColor, "the transparent color",
                 "its palette entry got another color");
  }

 private:
  const bool hadKey_;
};

class ChangeColorsOfRows : public BandStage {
 public:
  ChangeColorsOfRows(Sides source, const ColorChange& change)
      : BandStage(source), change_(change), reach_(std::visit(Check(), change)) {}

  RowRange Needs(RowRange target) const override {
    if (target.count == 0 || reach_ == Reach::row) return target;
    if (reach_ == Reach::wholePicture) return {0, Source().height};
    const int first = std::max(0, target.first - 1);
    return {first, std::min(Source().height, target.first + target.count + 1) - first};
  }

  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    const auto* const raster = std::get_if<Raster>(&like);
    if (raster == nullptr) throw UnsupportedError(kRastersOnly);
    std::unique_ptr<BandWork> work = detail::BeginChange(change_, *raster, Source());
    if (!std::holds_alternative<SetPaletteEntries>(change_)) return work;
    return std::make_unique<EntriesWork>(std::move(work), raster->transparentColor.has_value());
  }

 private:
  const ColorChange change_;
  const Reach reach_;
};

}  // namespace

std::unique_ptr<Stage> ChangeStage(Sides source, const ColorChange& change) {
  return std::make_unique<ChangeColorsOfRows>(source, change);
}

}  // namespace rasterkit
