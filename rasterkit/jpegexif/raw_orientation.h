#pragma once

#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Reads the orientation that the EXIF data of a JPEG file states:
///
///     1        2       3      4         5            6           7          8
///
///     888888  888888      88  88      8888888888  88                  88  8888888888
///     88          88      88  88      88  88      88  88          88  88      88  88
///     8888      8888    8888  8888    88          8888888888  8888888888          88
///     88          88      88  88
///     88          88  888888  888888
///
/// Unlike GetJpgRotation, which supports rotations only and expects EXIF data in the first APP1
/// section, this searches the whole header, past XMP and any number of other sections, and
/// tolerates damage as far as possible. Reads from the stream's position, which is undefined
/// afterwards. No value if the data is not JPEG or states no orientation from 1 to 8.
RASTERKIT_EXPORT std::optional<int> ReadRawOrientation(TStream& stream);

/// Reads the orientation of a JPEG file. Throws FileError if it cannot be opened or read.
RASTERKIT_EXPORT std::optional<int> ReadRawOrientation(const std::string& fileName);

}  // namespace rasterkit
