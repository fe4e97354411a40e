#pragma once

#include <string>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

/// Blocks of one file format that another one has no place for.
namespace rasterkit::detail {

/// Adds one loss for the PNG chunks: "PNG chunks abCd, cICP". Chunks that say that the colors are
/// sRGB are no loss. Those that only help a program that shows or stores the file (background, time
/// of change, histogram, significant bits) are a note. `format` is "a JPEG file".
RASTERKIT_EXPORT void LosePngChunks(const Metadata& metadata, const std::string& format,
                                    Changes& changes);

/// Adds one loss for the TIFF tags, by number: "TIFF tags 42112, 65000".
RASTERKIT_EXPORT void LoseTiffTags(const Metadata& metadata, const std::string& format,
                                   Changes& changes);

}  // namespace rasterkit::detail
