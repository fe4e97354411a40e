#pragma once

#include <cstdint>
#include <string>

#include <rasterkit/jpegexif/date_time.h>
#include <rasterkit/runtime/export.h>

/// What a host asks about a photo file without loading its pixels. A file that cannot be opened
/// throws FileError; a GPS position or time that is no triple of rationals throws ConversionError
/// out of either query.
namespace rasterkit {

/// By how many degrees (0, 90, 180, 270, counter-clockwise, the sense of RotateBitmap) the photo
/// must be turned to stand upright. True when it has to be turned. Mirrored orientations, files
/// without EXIF data and files that are no JPEG give false and 0.
RASTERKIT_EXPORT bool GetJpgRotation(const std::string& FileName, int& Rotation);

/// When the photo was taken: `Date` in days since 30 December 1899 (see TDateTime), 0 when the
/// result is false, which says that there is no EXIF data.
///
/// The directory reader does not admit the tags that hold a photo's dates, so that the date text is
/// always empty: every photo with EXIF data throws ConversionError.
RASTERKIT_EXPORT bool GetJpgDate(const std::string& FileName, TDateTime& Date);

/// Reads the EXIF form of a moment, "2019:07:04 13:05:09". Throws ConversionError for anything
/// else.
RASTERKIT_EXPORT TDateTime ParseExifDateTime(const std::string& text);

}  // namespace rasterkit
