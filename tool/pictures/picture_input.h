#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/reading/picture_file.h>

namespace rasterkit::tool {

/// A picture as stored in its file, not yet turned upright.
struct LoadedPicture : PictureFile {
  std::unique_ptr<TBitmap> bitmap;
};

/// Loads the first picture of a file for viewing. The type is detected from the content, and the
/// numbers of a grid become grays (see VisibleRows). Decodes on several `threads` if the type
/// allows it; a metafile is drawn according to `drawing`. Throws Failure(exitInputUnreadable).
LoadedPicture LoadPicture(const std::string& file, int threads = 1,
                          const MetafileDrawing& drawing = {});

/// Loads the rows. Facts that were read before a failure (type, file size, photograph, directories)
/// stay in `frame`. Throws Failure(exitInputUnreadable).
void LoadFrameInto(LoadedFrame& frame, const std::string& file, int threads = 1,
                   const MetafileDrawing& drawing = {});

}  // namespace rasterkit::tool
