#pragma once

#include <rasterkit/pictures/picture_bytes.h>
#include <rasterkit/pictures/picture_source.h>

namespace rasterkit::detail {

/// A file that a worker process reads: no byte of it is parsed here except the signature. The
/// source has the facts that the worker gives; metadata that it does not give is lost.
SourcePtr OpenIsolated(PictureBytes bytes, PictureType type, const OpenOptions& options);

}  // namespace rasterkit::detail
