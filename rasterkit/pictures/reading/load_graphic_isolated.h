#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Loads a graphic for editing as LoadGraphic and LoadViaWic do, but a worker process reads the
/// file. The graphic has the same class and the same pixels; a photo with the extension ".jpg" is
/// turned upright. Only pixels leave the worker: a TJPEGImage is compressed again when it is saved,
/// and a metafile becomes a TPngImage of its drawing at 96 pixels per inch. Throws as LoadBitmap
/// does; every Error names the file.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> LoadGraphicIsolated(const std::string& fileName);

}  // namespace rasterkit
