#pragma once

#include <optional>
#include <string_view>

#include <rasterkit/metadata/edit/exif_tag_table.h>
#include <rasterkit/metadata/edit/iptc_records.h>
#include <rasterkit/metadata/edit/xmp_setting.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What a name stands for: one of the three is not null.
struct NamedTag {
  const ExifTagFact* exif = nullptr;
  const IptcFact* iptc = nullptr;
  const XmpFact* xmp = nullptr;
};

/// Finds a tag by its name; see TagSetting. Throws RangeError for an unknown name.
RASTERKIT_EXPORT NamedTag FindTag(std::string_view name);

/// All of a kind.
enum class TagGroup { exif, gps, xmp, iptc, comment, makerNote, thumbnail, all };

/// By "EXIF", "GPS", "XMP", "IPTC", "Comment", "MakerNote", "Thumbnail" or "all", in any case of
/// letters.
RASTERKIT_EXPORT std::optional<TagGroup> FindTagGroup(std::string_view name);

}  // namespace rasterkit
