#pragma once

#include <cstdint>
#include <span>
#include <string>

#include <rasterkit/jpegexif/date_time.h>
#include <rasterkit/runtime/export.h>

/// Queries about a photo file that do not decode its pixels. Both throw FileError if the file
/// cannot be opened, and ConversionError if a GPS position or time is not a triple of rationals.
namespace rasterkit {

/// Reads by how many degrees (0, 90, 180 or 270, counter-clockwise as in RotateBitmap) the photo
/// must be turned to stand upright. Returns true if it must be turned. Mirrored orientations, files
/// without EXIF data and files that are not JPEG give false and 0.
RASTERKIT_EXPORT bool GetJpgRotation(const std::string& FileName, int& Rotation);

/// Reads when the photo was taken: `Date` in days since 30 December 1899 (see TDateTime). Returns
/// false, with `Date` 0, if there is no EXIF data.
///
/// The directory reader does not admit the tags that hold a photo's dates, so the date text is
/// always empty: every photo with EXIF data throws ConversionError.
RASTERKIT_EXPORT bool GetJpgDate(const std::string& FileName, TDateTime& Date);

/// Parses an EXIF date and time, "2019:07:04 13:05:09". Throws ConversionError for anything else.
RASTERKIT_EXPORT TDateTime ParseExifDateTime(const std::string& text);

namespace detail {

/// Does what GetJpgRotation does, with the bytes of the file; errors name `fileName`.
bool RotationOfPhoto(std::span<const uint8_t> photo, const std::string& fileName, int& rotation);

}  // namespace detail
}  // namespace rasterkit
