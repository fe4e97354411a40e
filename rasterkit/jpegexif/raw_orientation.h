#pragma once

#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// The orientation that a JPEG file's EXIF data states:
///
///     1        2       3      4         5            6           7          8
///
///     888888  888888      88  88      8888888888  88                  88  8888888888
///     88          88      88  88      88  88      88  88          88  88      88  88
///     8888      8888    8888  8888    88          8888888888  8888888888          88
///     88          88      88  88
///     88          88  888888  888888
///
/// Unlike GetJpgRotation, which answers for the plain turns only and takes the first APP1 section
/// for the EXIF one, this looks through the whole header, past XMP and any number of other
/// sections, and is forgiving about damage: whatever can still be read counts. The stream is read
/// from its position; afterwards it stands anywhere. No value when the bytes are no JPEG, or state
/// no orientation from 1 to 8.
RASTERKIT_EXPORT std::optional<int> ReadRawOrientation(TStream& stream);

/// The same for a file. Throws FileError when it cannot be opened or read.
RASTERKIT_EXPORT std::optional<int> ReadRawOrientation(const std::string& fileName);

}  // namespace rasterkit
