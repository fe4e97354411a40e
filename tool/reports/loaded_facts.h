#pragma once

#include <rasterkit/pictures/reading/picture_file.h>

#include "tool/reports/picture_facts.h"

namespace rasterkit::tool {

/// Decodes the pixels of a file, in a worker process if that is wanted. Throws
/// Failure(exitInputUnreadable); facts that were read before stay in `loaded`.
void LoadForFacts(LoadedFrame& loaded, const std::string& file);

/// Takes the facts of a decoded file: all that a worker process gives. `facts.error` is known.
void TakeLoadedFacts(PictureFacts& facts, const LoadedFrame& loaded);

}  // namespace rasterkit::tool
