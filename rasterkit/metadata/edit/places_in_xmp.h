#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// Removes all properties that say where a photograph was taken or what place it shows, on any
/// level of a packet: coordinates of any namespace, names of places, and thumbnails that state a
/// position themselves. False if the packet is damaged, so that a position could stay.
bool RemovePlacesOfXmp(std::string& packet);

/// Removes coordinates that are no properties of EXIF: those of drones and of programs.
void RemovePlacesOfMakers(std::string& packet);

}  // namespace rasterkit::detail
