#pragma once

#include <string>

#include <rasterkit/metadata/follow_pixels.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Brings an XMP packet and its extended part in line with changed pixels: orientation 1, sizes,
/// resolution, subject area, regions. Thumbnails, panorama, depth, gain-map and motion-photo
/// properties go when they no longer hold; what is lost thereby is added to `changes`. A packet
/// without such properties keeps its bytes. A damaged packet stays where no pixels changed, else it
/// is dropped and said. Without changed pixels only orientation and resolution are set.
RASTERKIT_EXPORT void FollowPixelsInXmp(std::string& xmp, std::string& extended,
                                        const PixelChange& change, Changes& changes);

namespace detail {

/// Maps the regions of a packet (faces, pets, focus) to the new places. Those outside the new
/// picture go, with a note; those of a kind that is not understood are a loss.
void FollowRegionsInXmp(XmpPacket& packet, const PixelChange& change, Changes& changes);

}  // namespace detail
}  // namespace rasterkit
