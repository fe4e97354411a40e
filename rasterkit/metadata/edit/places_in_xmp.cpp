#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include <rasterkit/metadata/edit/places_in_xmp.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {
namespace {

constexpr std::string_view kPhotoshop = "http://ns.adobe.com/photoshop/1.0/";
constexpr std::string_view kIptcCore = "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/";
constexpr std::string_view kGeo = "http://www.w3.org/2003/01/geo/wgs84_pos#";

struct PlaceName {
  std::string_view uri, name;
};
constexpr PlaceName kNames[] = {
    {kPhotoshop, "City"},
    {kPhotoshop, "State"},
    {kPhotoshop, "Country"},
    {kIptcCore, "Location"},
    {kIptcCore, "CountryCode"},
    {xmp_name::kIptcExtension, "LocationCreated"},
    {xmp_name::kIptcExtension, "LocationShown"},
    {xmp_name::kIptcExtension, "LocationId"},
    {xmp_name::kIptcExtension, "City"},
    {xmp_name::kIptcExtension, "Sublocation"},
    {xmp_name::kIptcExtension, "ProvinceState"},
    {xmp_name::kIptcExtension, "CountryName"},
    {xmp_name::kIptcExtension, "CountryCode"},
    {xmp_name::kIptcExtension, "WorldRegion"},
};

/// Drones write "GpsLongtitude" too.
constexpr std::string_view kParts[] = {"latitude", "longitude", "longtitude", "altitude"};

/// What programs for maps and panoramas write.
constexpr std::string_view kShortNames[] = {"lat", "lon", "lng", "long", "geopoint"};

bool IsCoordinate(const XmpName& name) {
  if (name.uri == kGeo) return true;
  const std::string local = LowerCase(name.local);
  const bool isShort =
      std::find(std::begin(kShortNames), std::end(kShortNames), local) != std::end(kShortNames);
  if (isShort || local.starts_with("gps")) return true;
  return std::any_of(std::begin(kParts), std::end(kParts),
                     [&](std::string_view part) { return local.find(part) != std::string::npos; });
}

bool IsPlace(const XmpName& name) {
  return IsCoordinate(name) ||
         std::any_of(std::begin(kNames), std::end(kNames),
                     [&](const PlaceName& place) { return name.Is(place.uri, place.name); });
}

std::optional<uint8_t> SixBits(char letter) {
  constexpr std::string_view kLetters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const size_t at = kLetters.find(letter);
  return at == std::string_view::npos ? std::nullopt : std::optional(static_cast<uint8_t>(at));
}

/// The bytes that letters in base 64 stand for.
std::string BytesOfBase64(std::string_view text) {
  std::string bytes;
  uint32_t bits = 0;
  int count = 0;
  for (const char letter : text) {
    const auto six = SixBits(letter);
    if (!six) continue;
    bits = (bits << 6 | *six) & 0xFFFFFF;
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count);
  }
  return bytes;
}

/// A picture in a packet with an EXIF block of its own.
bool HidesExif(const XmpNode& node) {
  constexpr std::string_view kExif("Exif\0\0", 6);
  constexpr size_t kLeastLetters = 100;
  return node.text.size() >= kLeastLetters &&
         BytesOfBase64(node.text).find(kExif) != std::string::npos;
}

template <class Test>
bool Remove(std::string& text, const Test& isPlace, bool looksIntoPictures) {
  XmpPacket packet(text);
  if (packet.IsDamaged()) return false;
  for (const XmpNode& node : packet.Tree().Nodes()) {
    for (const XmpAttribute& attribute : node.attributes) {
      if (isPlace(attribute.name)) packet.Replace(attribute.begin, attribute.end, "");
    }
    const bool isRoot = &node == &packet.Tree().Nodes().front();
    if (!isRoot && (isPlace(node.name) || (looksIntoPictures && HidesExif(node)))) {
      packet.RemoveElement(node);
    }
  }
  if (packet.IsChanged()) text = packet.Text();
  return true;
}

}  // namespace

bool RemovePlacesOfXmp(std::string& packet) {
  return Remove(packet, IsPlace, true);
}

void RemovePlacesOfMakers(std::string& packet) {
  const auto isOfMaker = [](const XmpName& name) {
    return IsCoordinate(name) && name.uri != xmp_name::kExif;
  };
  Remove(packet, isOfMaker, false);
}

}  // namespace rasterkit::detail
