#pragma once

#include <memory>

#include <rasterkit/codecs/rows/row_writer.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Begins to write a file row by row; it has the bytes that WriteJpeg gives. Except for arithmetic
/// coding in one scan, the library keeps the coefficients of the whole picture to choose its codes.
RASTERKIT_EXPORT std::unique_ptr<RowWriter> OpenJpegWriter(const Pixels& like, WrittenSize size,
                                                           const PictureWriting& writing,
                                                           TStream& stream);

}  // namespace rasterkit
