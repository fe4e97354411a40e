#pragma once

#include <rasterkit/metadata/edit/edit_metadata.h>

namespace rasterkit::detail {

/// Leaves what belongs to the pixels: profile and other statements about colors and samples,
/// resolution, and the orientation of pixels that are not turned. What names no color space goes
/// with the profile if `dropsProfile`.
void StripAll(Metadata& metadata, bool dropsProfile, const EditedPicture& picture);

/// Removes the thumbnails of EXIF, Photoshop and XMP. Throws FormatError if the thumbnail's
/// directory is damaged, so that something of the picture could stay.
void StripThumbnails(Metadata& metadata);

/// Removes the maker note, what it keeps outside of itself, and the copy that some converters make.
void StripMakerNote(Metadata& metadata, Changes& changes);

}  // namespace rasterkit::detail
