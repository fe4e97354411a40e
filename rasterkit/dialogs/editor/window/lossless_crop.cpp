#include <exception>

#include <rasterkit/dialogs/editor/window/lossless_crop.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>

namespace rasterkit {

std::function<bool(const CropStep& part)> LosslessCropOf(const Picture& picture,
                                                         const std::string& file,
                                                         const RecipeSave& save) {
  if (picture.SourceType() != PictureType::jpeg) return {};
  return [picture, file, save](const CropStep& part) {
    try {
      Picture cropped = picture;
      const Report plan = cropped.Crop(part).Plan(file, SaveOptionsOf(save));
      return plan.isMoved || plan.isCopied;
    } catch (const std::exception&) {
      return false;
    }
  };
}

}  // namespace rasterkit
