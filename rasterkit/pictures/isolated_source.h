#pragma once

#include <rasterkit/pictures/picture_source.h>
#include <rasterkit/pictures/reading/picture_bytes.h>

namespace rasterkit::detail {

/// Opens a file that a worker process reads and copies: no byte of it is parsed here except the
/// signature.
SourcePtr OpenIsolated(PictureBytes bytes, PictureType type, const OpenOptions& options);

}  // namespace rasterkit::detail
