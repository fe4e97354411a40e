#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Loads a picture by its content, whatever its extension claims, through the imaging codec. The
/// extension still says what becomes of it: ".jpg" a TJPEGImage, ".png" a TPngImage, anything else
/// a TBitmap. Null when no codec reads it; throws LimitError when only its copy needs too much
/// memory. It is not turned by its EXIF orientation.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> LoadViaWic(const std::string& fileName);

}  // namespace rasterkit
