#include <algorithm>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/pictures/recipes/error_place.h>
#include <rasterkit/pictures/recipes/slot_of_step.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

const Picture& PictureOf(const RecipeSlots& slots, const std::string& slot) {
  const auto found = slots.find(slot);
  if (found == slots.end()) throw RangeError(fmt::format("the slot \"{}\" has no picture", slot));
  return found->second;
}

/// Grays have a ramp; empty for other pictures without a palette.
HPALETTE PaletteOf(const PixelLayout& layout) {
  constexpr int kByte = 8;
  const bool isGray =
      layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
  const bool hasIndexes = layout.bands == 1 && layout.bits <= kByte;
  if (isGray && hasIndexes && layout.palette.Count() == 0) return GrayPalette(1 << layout.bits);
  return layout.palette;
}

/// Adds the steps of a picture that one step of a recipe stands for.
class StepApplier {
 public:
  StepApplier(Picture& picture, const RecipeSlots& slots) : picture_(picture), slots_(slots) {}

  template <class PlainStep>
  void operator()(const PlainStep& step) const {
    picture_.Apply(step);
  }

  /// Where nothing is transparent, nothing is painted, and numbers stay numbers.
  void operator()(const ChangeStep& step) const {
    const bool paintsNothing = std::holds_alternative<PaintTransparency>(step.change) &&
                               picture_.Layout().alpha == AlphaKind::none;
    if (!paintsNothing) picture_.Apply(step);
  }

  void operator()(const RecipeCrop& step) const { picture_.Crop(PixelsOf(step, picture_)); }

  void operator()(const RecipeResize& step) const {
    MetadataEdit edit;
    if (step.dpi > 0) {
      edit.resolution = Resolution{step.dpi, step.dpi};
    } else if (step.unit == LengthUnit::millimeters) {
      edit.resolution = picture_.GetMetadata().resolution;
    }
    picture_.Apply(PixelsOf(step, picture_));
    if (edit.resolution) picture_.Edit(edit);
  }

  void operator()(const RecipeCombine& step) const {
    Picture over = PictureOf(slots_, step.slot);
    if (step.stretch) over.Stretch(*step.stretch);
    picture_.Combine(over, step.options);
  }

  void operator()(const RecipePalette& step) const {
    const HPALETTE palette = PaletteOf(PictureOf(slots_, step.slot).Layout());
    if (palette.Count() == 0) {
      throw RangeError(fmt::format("the picture of the slot \"{}\" has no palette", step.slot));
    }
    picture_.Change(UsePalette{palette});
  }

  void operator()(const RecipeCopy& step) const {
    MetadataCopy copy;
    copy.from = std::make_shared<const Metadata>(PictureOf(slots_, step.slot).GetMetadata());
    copy.takesExif = step.takesExif;
    copy.takesXmp = step.takesXmp;
    copy.takesIptc = step.takesIptc;
    copy.takesComments = step.takesComments;
    copy.takesProfile = step.takesProfile;
    copy.keepsOrientation = step.keepsOrientation;
    MetadataEdit edit;
    edit.copy = std::move(copy);
    picture_.Edit(edit);
  }

 private:
  Picture& picture_;
  const RecipeSlots& slots_;
};

}  // namespace

void ApplyRecipeStep(Picture& picture, const RecipeStep& step, const RecipeSlots& slots) {
  Picture changed = picture;
  std::visit(StepApplier(changed, slots), step);
  picture = std::move(changed);
}

void ApplyRecipe(Picture& picture, const Recipe& recipe, const RecipeSlots& slots) {
  Picture changed = picture;
  for (size_t i = 0; i < recipe.steps.size(); ++i) {
    detail::AtPlace(fmt::format("/steps/{}", i),
                    [&] { std::visit(StepApplier(changed, slots), recipe.steps[i]); });
  }
  detail::AtPlace("/save", [&] { ApplySaving(changed, recipe.save); });
  picture = std::move(changed);
}

std::vector<std::string> SlotsOf(const Recipe& recipe) {
  std::vector<std::string> slots;
  for (const RecipeStep& step : recipe.steps) {
    const std::string slot = detail::SlotOf(step);
    const bool isNew = std::find(slots.begin(), slots.end(), slot) == slots.end();
    if (!slot.empty() && isNew) slots.push_back(slot);
  }
  return slots;
}

MetadataEdit EditOf(RecipeSave::Keep keep) {
  MetadataEdit edit;
  edit.stripAll = keep == RecipeSave::Keep::nothing;
  edit.stripGps = keep == RecipeSave::Keep::withoutGps;
  return edit;
}

bool ApplyDepth(Picture& picture, int bits, TColor background) {
  constexpr int kWithAlpha = 32;
  const bool paints = bits != kWithAlpha && picture.Layout().alpha != AlphaKind::none;
  if (paints) picture.Change(PaintTransparency{background});
  picture.Change(SetBits{bits});
  return paints;
}

void ApplySaving(Picture& picture, const RecipeSave& save) {
  Picture changed = picture;
  if (const MetadataEdit edit = EditOf(save.metadata); !edit.IsEmpty()) changed.Edit(edit);
  if (save.bits) ApplyDepth(changed, *save.bits, save.background);
  picture = std::move(changed);
}

SaveOptions SaveOptionsOf(const RecipeSave& save) {
  SaveOptions options;
  options.type = save.type;
  options.compression = save.compression;
  options.quality = save.quality;
  options.chromaX = save.chromaX;
  options.chromaY = save.chromaY;
  options.pngLevel = save.pngLevel;
  options.lossless = save.lossless;
  options.background = save.background;
  return options;
}

}  // namespace rasterkit
