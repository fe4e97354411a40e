#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Writes a file with the blocks that `writing.move` takes; see CopyJpeg. `header` is that of the
/// file.
WrittenPicture MoveJpeg(std::span<const uint8_t> file, const PictureHeader& header,
                        const PictureWriting& writing, TStream& stream);

}  // namespace rasterkit::detail
