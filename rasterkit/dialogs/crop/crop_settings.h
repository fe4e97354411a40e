#pragma once

#include <rasterkit/dialogs/crop/crop_guides.h>
#include <rasterkit/dialogs/crop/crop_ratios.h>
#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit {

/// What the crop window remembers between two calls, in the host's settings.
struct CropSettings {
  LengthUnit unit = LengthUnit::pixels;
  CropRatio ratio;
  CropGuide guide = CropGuide::none;
};

/// Reads the settings; what is missing or invalid is as usual.
CropSettings ReadCropSettings();
void WriteCropSettings(const CropSettings& settings);

}  // namespace rasterkit
