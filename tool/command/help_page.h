#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// A name and what it means, side by side in the help.
struct HelpEntry {
  std::string name, text;
};

struct HelpSection {
  std::string title;
  std::vector<HelpEntry> entries;
};

/// The help of the tool or of a verb. Texts are plain paragraphs without line breaks.
struct HelpPage {
  std::string description;
  std::string usage;
  std::vector<std::string> paragraphs;
  std::vector<HelpSection> sections;
  /// Command lines to copy; they are never wrapped.
  std::vector<std::string> examples;
};

/// Lays out a page for lines of at most `columns` characters. Sections without entries are skipped.
std::string HelpText(const HelpPage& page, size_t columns);

}  // namespace rasterkit::tool
