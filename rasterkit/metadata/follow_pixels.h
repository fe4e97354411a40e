#pragma once

#include <array>
#include <cstdint>
#include <span>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What was done to the pixels that some metadata describes.
struct PixelChange {
  /// Sides before (as stored) and after.
  int oldWidth = 0, oldHeight = 0, width = 0, height = 0;
  /// Leads from places of the old picture to the new one, in pixels counted from the top left
  /// corner: x' = m[0] x + m[1] y + m[2], y' = m[3] x + m[4] y + m[5].
  std::array<double, 6> toNew = {1, 0, 0, 0, 1, 0};
  /// True if any pixel changed its place or its color.
  bool pixelsChanged = false;
  /// True if the sides or places changed (turn, crop, resize), not colors alone.
  bool placesChanged = false;
  /// True if the pixels are those of the old picture at other places (turns, mirrors): statistics
  /// still hold.
  bool keepsValues = false;
  /// True if the pixels are as stored and the orientation still has to be stated.
  bool keepsOrientation = false;
  /// True if the picture is gray now and was not.
  bool becameGray = false;
  /// The resolution after the change.
  Resolution resolution;
  /// A new thumbnail as a JPEG file; empty if none could be made.
  std::span<const uint8_t> thumbnail;
};

/// Brings metadata in line with the changed pixels: orientation 1 in EXIF and XMP, sizes, subject
/// area, regions, focal-plane resolution, thumbnail, resolution, digests. What no longer holds is
/// removed (gain-map and panorama properties, hidden copies of the picture, the time of the last
/// change in a PNG file); what is lost thereby
/// is added to `changes`. A damaged EXIF block is made upright in place, or dropped and said.
/// Without changed pixels only orientation and resolution are set.
RASTERKIT_EXPORT void FollowPixels(Metadata& metadata, const PixelChange& change, Changes& changes);

/// True if the EXIF block or the Photoshop resources have a thumbnail.
RASTERKIT_EXPORT bool HasThumbnail(const Metadata& metadata);

/// Replaces the thumbnails of the EXIF block and the Photoshop resources, where there are some, by
/// a JPEG file. Without one they are removed, and each is a loss. A damaged EXIF block loses its
/// thumbnail.
RASTERKIT_EXPORT void ReplaceThumbnails(Metadata& metadata, std::span<const uint8_t> thumbnail,
                                        Changes& changes);

}  // namespace rasterkit
