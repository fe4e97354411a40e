#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Loads a picture by its content, regardless of its extension, through the imaging codec. The
/// extension decides the class: TJPEGImage for ".jpg", TPngImage for ".png", TBitmap for anything
/// else. Null if no codec reads the file. Throws LimitError if only the copy in that class needs
/// too much memory. Ignores the EXIF orientation.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> LoadViaWic(const std::string& fileName);

}  // namespace rasterkit
