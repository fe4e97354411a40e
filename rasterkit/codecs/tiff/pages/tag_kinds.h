#pragma once

#include <cstdint>

/// What a tag of a TIFF main directory is for.
namespace rasterkit::detail {

enum class TagKind {
  /// How the pixels are stored; written anew with every picture.
  structure,
  /// Leads to another directory.
  pointer,
  /// Has a place of its own in Metadata: XMP, IPTC, Photoshop, ICC profile.
  block,
  /// Position on a map, coordinate system, "no data".
  position,
  /// Orientation and resolution.
  display,
  /// Holds for these very samples only: least and greatest value, transfer tables, layers.
  ofSamples,
  /// Everything else: texts, tags of photographs, private ones.
  free
};

TagKind KindOfTag(uint16_t tag);

/// True if the values of a tag of that type are places of directories.
bool LeadsToDirectory(uint16_t tag, uint16_t type);

/// Leads to the directory of parameters that hold for the whole file.
inline constexpr uint16_t kGlobalParameters = 400;
inline constexpr uint16_t kInteropPointer = 40965;
/// Layers of the picture in the format of another program.
inline constexpr uint16_t kLayersTag = 37724;

}  // namespace rasterkit::detail
