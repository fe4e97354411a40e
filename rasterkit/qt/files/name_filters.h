#pragma once

#include <QString>
#include <string>
#include <string_view>
#include <vector>

/// Filter lists of file dialogs, "description|pattern;pattern|description|pattern". Internal to
/// this folder.
namespace rasterkit::detail {

struct FilterEntry {
  std::string description;
  /// "*.bmp"; never empty: "*" if the list has none.
  std::vector<std::string> patterns;
};

/// Splits "*.tif; *.tiff" into patterns; "*" alone if there is none.
std::vector<std::string> SplitPatterns(std::string_view text);

/// Returns the entries in their order: entry i has the filter index i + 1.
std::vector<FilterEntry> SplitFilter(std::string_view filter);

/// Translates the description, either as a whole or only the text before its patterns: "Windows
/// bitmap (*.bmp)" may become "Windows-Bitmap (*.bmp)". The list itself does not change.
std::string ShownDescription(const std::string& description);

/// Returns the entry in the notation of Qt's dialog and in the user's language: "description (*.tif
/// *.tiff)".
QString NameFilter(const FilterEntry& entry);

/// Returns the extensions of the entry's patterns with their dots, without those that have
/// wildcards.
std::vector<std::string> ExtensionsOf(const FilterEntry& entry);

/// Returns the name under which a file is saved for this entry: an extension that is not exactly
/// one of the entry's is replaced by the first of them. Saving by filter index uses the same rule,
/// so that the overwrite question names the file that is written.
std::string NameForEntry(const std::string& fileName, const FilterEntry& entry);

}  // namespace rasterkit::detail
