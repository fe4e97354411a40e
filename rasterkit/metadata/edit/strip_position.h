#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Removes what says where a photograph was taken: the GPS directory of the EXIF block and of the
/// pictures in it, coordinates and names of places in XMP, IPTC, Photoshop's resources and texts of
/// a PNG file, blocks of cameras with tracks. The bytes become zeros, also where other programs
/// have left copies in the block. A block that is too damaged to be sure is dropped or made anew of
/// what can be read, which is added to `changes`. The position on the map stays.
RASTERKIT_EXPORT void StripPosition(Metadata& metadata, Changes& changes);

/// The same for single blocks: an XMP packet, IPTC records, image resources. What is too damaged
/// becomes empty.
RASTERKIT_EXPORT void StripPositionOfXmp(std::string& packet);
RASTERKIT_EXPORT void StripPositionOfIptc(std::vector<uint8_t>& records);
RASTERKIT_EXPORT void StripPositionOfResources(std::vector<uint8_t>& resources);

}  // namespace rasterkit
