#pragma once

#include <string>
#include <string_view>

#include <rasterkit/metadata/edit/exif_tag_table.h>
#include <rasterkit/metadata/tag_value.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Reads the value of a tag from text: "1/125" or "0.008" for fractions, whole numbers, several
/// with blanks or commas between them, dates as ReadMoment takes them, degrees as "48.5" or
/// "48 30 0", text in UTF-8. `isBigEndian` is the byte order of the block, on which UTF-16 texts
/// depend. Throws RangeError with the tag's name and the reason.
RASTERKIT_EXPORT TagValue ReadExifValue(const ExifTagFact& fact, std::string_view text,
                                        bool isBigEndian);

/// The values as text: at most 16 numbers; for bytes without a known meaning only their count.
RASTERKIT_EXPORT std::string TextOfExifValue(const TagValue& value);

}  // namespace rasterkit
