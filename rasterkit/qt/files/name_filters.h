#pragma once

#include <QString>
#include <string>
#include <string_view>
#include <vector>

/// Filter lists of file dialogs, "description|pattern;pattern|description|pattern". Internal to the
/// room.
namespace rasterkit::detail {

struct FilterEntry {
  std::string description;
  /// "*.bmp"; never empty, "*" where the list has none.
  std::vector<std::string> patterns;
};

/// "*.tif; *.tiff" in pieces; "*" alone where there is none.
std::vector<std::string> SplitPatterns(std::string_view text);

/// The entries in their order, so that entry i has the filter index i + 1.
std::vector<FilterEntry> SplitFilter(std::string_view filter);

/// The description in the user's language: as a whole, or what stands in front of its patterns:
/// "Windows bitmap (*.bmp)" may become "Windows-Bitmap (*.bmp)". The list itself keeps what it has.
std::string ShownDescription(const std::string& description);

/// As Qt's dialog wants it, in the user's language: "description (*.tif *.tiff)".
QString NameFilter(const FilterEntry& entry);

/// The extensions of the entry's patterns, with their dots; those with wildcards are left out.
std::vector<std::string> ExtensionsOf(const FilterEntry& entry);

/// The name that a file gets when it is saved as the entry says: an extension that is none of the
/// entry's, exactly as they are written, is replaced by the first of them. The same rule as those
/// apply who save by the filter index, so that what is asked about is what is written.
std::string NameForEntry(const std::string& fileName, const FilterEntry& entry);

}  // namespace rasterkit::detail
