#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// How a property of XMP holds its value.
enum class XmpForm { text, number, rating, moment, truth, list, orderedList, languages };

/// A property that can be set by name.
struct XmpFact {
  std::string_view prefix, uri, name;
  XmpForm form;
};

/// By "creator", "dc:creator" or "XMP-dc:creator", in any case of letters; null if there is none.
RASTERKIT_EXPORT const XmpFact* FindXmpFact(std::string_view name);

/// Checks a value and brings it to the form in which packets have it: dates in ISO 8601. Throws
/// RangeError with the name and the reason.
RASTERKIT_EXPORT std::string ReadXmpValue(const XmpFact& fact, std::string_view text);

/// Sets a property of a packet, whatever form it had; an empty packet becomes a new one. Several
/// values are for lists. Throws FormatError for a damaged packet.
RASTERKIT_EXPORT void SetXmp(std::string& packet, const XmpFact& fact,
                             const std::vector<std::string>& values);

/// Removes a property of a packet; false if there is none or the packet is damaged.
RASTERKIT_EXPORT bool RemoveXmp(std::string& packet, const XmpFact& fact);

}  // namespace rasterkit
