#include <iterator>
#include <string>

#include <rasterkit/metadata/edit/tag_names.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

struct GroupName {
  std::string_view name;
  TagGroup group;
};

constexpr GroupName kGroups[] = {
    {"EXIF", TagGroup::exif},
    {"GPS", TagGroup::gps},
    {"XMP", TagGroup::xmp},
    {"IPTC", TagGroup::iptc},
    {"Comment", TagGroup::comment},
    {"MakerNote", TagGroup::makerNote},
    {"Thumbnail", TagGroup::thumbnail},
    {"all", TagGroup::all},
};

/// The group in front of a name, which then loses it; empty if there is none.
std::string_view TakeGroup(std::string_view& name) {
  const size_t colon = name.find(':');
  if (colon == std::string_view::npos) return {};
  const std::string_view group = name.substr(0, colon);
  for (const char* known : {"EXIF", "GPS", "IPTC", "XMP"}) {
    if (CompareText(group, known) != 0) continue;
    name.remove_prefix(colon + 1);
    return known;
  }
  return {};
}

NamedTag OfGroup(std::string_view group, std::string_view name) {
  NamedTag tag;
  const bool isGps = group == "GPS";
  const bool hasColon = name.find(':') != std::string_view::npos;
  if ((group.empty() && !hasColon) || group == "EXIF" || isGps) tag.exif = FindExifTag(name);
  if (isGps && tag.exif == nullptr) tag.exif = FindExifTag("GPS" + std::string(name));
  if (isGps && tag.exif != nullptr && tag.exif->directory != ExifDirectoryId::gps) return {};
  if (tag.exif != nullptr) return tag;
  if ((group.empty() && !hasColon) || group == "IPTC") tag.iptc = FindIptcFact(name);
  if (tag.iptc != nullptr) return tag;
  if (group.empty() || group == "XMP") tag.xmp = FindXmpFact(name);
  return tag;
}

}  // namespace

NamedTag FindTag(std::string_view given) {
  std::string_view name = given;
  const std::string_view group = TakeGroup(name);
  const NamedTag tag = OfGroup(group, name);
  if (tag.exif == nullptr && tag.iptc == nullptr && tag.xmp == nullptr) {
    throw RangeError("no tag has the name \"" + std::string(given) + "\"");
  }
  return tag;
}

std::optional<TagGroup> FindTagGroup(std::string_view name) {
  for (const GroupName& group : kGroups) {
    if (CompareText(group.name, name) == 0) return group.group;
  }
  return std::nullopt;
}

}  // namespace rasterkit
