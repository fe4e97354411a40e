#pragma once

#include <rasterkit/metadata/edit/edit_metadata.h>

namespace rasterkit::detail {

/// States where the photograph was taken: in EXIF, and in XMP where it states a position. What
/// belongs to the old position goes: altitude, quality of the reception. Throws RangeError.
void SetPosition(Metadata& metadata, const GpsPosition& position, const EditedPicture& picture);

/// States when the photograph was taken, digitized and changed, in EXIF, and in XMP, IPTC and texts
/// where these state a date. Fractions of seconds go if none is given, offsets stay.
void SetDate(Metadata& metadata, const std::string& date, const EditedPicture& picture);

}  // namespace rasterkit::detail
