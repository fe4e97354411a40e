#pragma once

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/follow_pixels.h>
#include <rasterkit/metadata/loss.h>

namespace rasterkit::detail {

/// Brings a whole EXIF block in line with the changed pixels; see FollowPixels.
void FollowPixelsInExif(ExifBlock& exif, const PixelChange& change, Changes& changes);

/// Replaces the thumbnail of a whole block by that of the change; without one it is removed, which
/// is a loss.
void FollowThumbnail(ExifBlock& exif, const PixelChange& change, Changes& changes);

/// Makes a damaged block upright in place and erases its thumbnail. False if that cannot be done
/// for certain.
bool RepairDamagedExif(ExifBlock& exif, const PixelChange& change);

}  // namespace rasterkit::detail
