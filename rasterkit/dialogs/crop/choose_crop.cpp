#include <rasterkit/dialogs/crop/choose_crop.h>
#include <rasterkit/dialogs/crop/choose_crop_form.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

TRect RectOf(const CropStep& step) {
  return {step.left, step.top, step.left + step.width, step.top + step.height};
}

/// The pixels to start with; nothing for the whole picture, also if a rectangle that may be clipped
/// lies beside it.
std::optional<TRect> StartOf(const std::optional<RecipeCrop>& start, const Picture& picture) {
  if (!start) return std::nullopt;
  if (start->outside != Outside::clip) return RectOf(PixelsOf(*start, picture));
  const std::optional<CropStep> inside = PixelsInside(*start, picture);
  return inside ? std::optional(RectOf(*inside)) : std::nullopt;
}

/// Whether the answer leads to the pixels that the window shows.
bool Keeps(const RecipeCrop& answer, const Picture& picture, const TRect& shown) {
  try {
    const TRect kept = RectOf(PixelsOf(answer, picture));
    return kept.Left == shown.Left && kept.Top == shown.Top && kept.Right == shown.Right &&
           kept.Bottom == shown.Bottom;
  } catch (const RangeError&) {
    return false;
  }
}

}  // namespace

std::optional<RecipeCrop> ChooseCrop(TBitmap& pixels, const Picture& picture,
                                     const ChooseCropOptions& options, QWidget* parent) {
  const TModalCall call;
  const std::optional<TRect> start = StartOf(options.start, picture);
  TFormChooseCrop form(pixels, CropFactsOf(pixels, picture, options.mapUnit), options, start,
                       ReadCropSettings(), parent);
  if (form.ShowModal() != mrOk) return std::nullopt;
  WriteCropSettings(form.Settings());
  RecipeCrop answer = form.Model().Answer();
  // Numbers of a map far from its origin can be too coarse for its pixels.
  const TRect shown = form.Model().Rect();
  if (Keeps(answer, picture, shown)) return answer;
  return RecipeCrop{LengthUnit::pixels,      double{0} + shown.Left,   double{0} + shown.Top,
                    double{0} + shown.Right, double{0} + shown.Bottom, answer.outside};
}

}  // namespace rasterkit
