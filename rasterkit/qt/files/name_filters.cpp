#include <algorithm>

#include <rasterkit/qt/files/name_filters.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  size_t start = 0;
  for (;;) {
    const size_t end = text.find(separator, start);
    pieces.emplace_back(text.substr(start, end - start));
    if (end == std::string_view::npos) return pieces;
    start = end + 1;
  }
}

}  // namespace

std::vector<std::string> SplitPatterns(std::string_view text) {
  std::vector<std::string> patterns;
  for (const std::string& piece : Split(text, ';')) {
    const std::string pattern = FromQt(ToQt(piece).trimmed());
    if (!pattern.empty()) patterns.push_back(pattern);
  }
  if (patterns.empty()) patterns.emplace_back("*");
  return patterns;
}

std::vector<FilterEntry> SplitFilter(std::string_view filter) {
  std::vector<FilterEntry> entries;
  if (filter.empty()) return entries;
  const std::vector<std::string> pieces = Split(filter, '|');
  for (size_t i = 0; i < pieces.size(); i += 2) {
    const bool hasPattern = i + 1 < pieces.size();
    // A separator at the end does not start another entry.
    if (!hasPattern && pieces[i].empty()) break;
    entries.push_back({pieces[i], SplitPatterns(hasPattern ? pieces[i + 1] : "")});
  }
  return entries;
}

std::string ShownDescription(const std::string& description) {
  std::string whole = ResourceString(description);
  const size_t patterns = description.rfind(" (");
  if (whole != description || patterns == description.npos) return whole;
  return ResourceString(description.substr(0, patterns)) + description.substr(patterns);
}

QString NameFilter(const FilterEntry& entry) {
  QString text = ToQt(ShownDescription(entry.description)) + " (";
  for (size_t i = 0; i < entry.patterns.size(); ++i) {
    if (i > 0) text += ' ';
    // "*.*" matches every file, also those without a dot.
    text += entry.patterns[i] == "*.*" ? QString("*") : ToQt(entry.patterns[i]);
  }
  return text + ')';
}

std::vector<std::string> ExtensionsOf(const FilterEntry& entry) {
  std::vector<std::string> extensions;
  for (const std::string& pattern : entry.patterns) {
    if (!pattern.starts_with("*.")) continue;
    const std::string extension = pattern.substr(1);
    if (extension.find_first_of("*?[") == std::string::npos) extensions.push_back(extension);
  }
  return extensions;
}

std::string NameForEntry(const std::string& fileName, const FilterEntry& entry) {
  const std::vector<std::string> extensions = ExtensionsOf(entry);
  if (extensions.empty()) return fileName;
  const std::string extension = ExtractFileExt(fileName);
  const bool fits = std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
  return fits ? fileName : ChangeFileExt(fileName, extensions.front());
}

}  // namespace rasterkit::detail
