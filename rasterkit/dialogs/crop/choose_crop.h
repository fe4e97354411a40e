#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/runtime/export.h>

class QWidget;

namespace rasterkit {

/// What the crop window shows and how it starts.
struct ChooseCropOptions {
  /// The rectangle at the start; nothing: the whole picture, as for one that may be clipped and has
  /// no part inside the picture.
  std::optional<RecipeCrop> start;
  /// Unit at the start, if it is another one than pixels; else the one that was used last. Pixels
  /// where the picture does not know it.
  LengthUnit unit = LengthUnit::pixels;
  bool showsUnits = true, showsRatios = true, showsGuides = true;
  /// Unit of the map where the picture's coordinate system names none: "m", "ft", "US ft",
  /// "degrees"; empty: the user may say it.
  std::string mapUnit;
  /// Tells for a part whether the compressed pixels of the file can be kept; may be empty. It must
  /// not throw.
  std::function<bool(const CropStep& part)> isLossless;
};

/// Lets the user draw or type a rectangle. `pixels` is what is shown: the pixels of `picture`, from
/// which resolution and position come; both must stay until the call returns. The answer is exactly
/// the rectangle that was shown (PixelsOf gives its pixels): in the unit in which its numbers were
/// typed, else in the one that the user chose in the window, else in pixels; `options.start` as it
/// is if nothing was changed; the whole picture if there is no rectangle. Nothing if the user
/// canceled. Ratio, guides and a unit that the user chose
/// are remembered in the host's settings. Throws RangeError if
/// `options.start` does not fit the picture, Error if no window can be shown.
RASTERKIT_EXPORT std::optional<RecipeCrop> ChooseCrop(TBitmap& pixels, const Picture& picture,
                                                      const ChooseCropOptions& options = {},
                                                      QWidget* parent = nullptr);

}  // namespace rasterkit
