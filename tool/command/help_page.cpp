#include "tool/command/help_page.h"

#include <algorithm>

namespace rasterkit::tool {
namespace {

/// Appends words to a text, and starts an indented line before a word that does not fit.
class Wrapper {
 public:
  Wrapper(std::string& text, size_t indent, size_t columns)
      : text_(text), indent_(indent), columns_(columns) {}

  /// The current line already has `used` characters.
  void Add(const std::string& paragraph, size_t used) {
    bool isLineStart = true;
    for (size_t begin = 0; begin < paragraph.size();) {
      const size_t end = std::min(paragraph.find(' ', begin), paragraph.size());
      const std::string word = paragraph.substr(begin, end - begin);
      begin = end + 1;
      if (!isLineStart && used + 1 + word.size() > columns_) {
        text_ += '\n' + std::string(indent_, ' ');
        used = indent_;
        isLineStart = true;
      }
      if (!isLineStart) {
        text_ += ' ';
        ++used;
      }
      text_ += word;
      used += word.size();
      isLineStart = false;
    }
    text_ += '\n';
  }

 private:
  std::string& text_;
  size_t indent_, columns_;
};

void AddParagraph(std::string& text, const std::string& paragraph, size_t columns) {
  Wrapper(text, 0, columns).Add(paragraph, 0);
}

/// A name that is too long for its column has a line of its own.
void AddEntry(std::string& text, const HelpEntry& entry, size_t columns) {
  constexpr size_t kWide = 24, kNarrow = 6, kLeastColumnsForWide = 64;
  const size_t indent = columns < kLeastColumnsForWide ? kNarrow : kWide;
  std::string line = "  " + entry.name;
  if (line.size() + 1 > indent) {
    text += line + '\n';
    line.clear();
  }
  line.resize(indent, ' ');
  text += line;
  Wrapper(text, indent, columns).Add(entry.text, indent);
}

}  // namespace

std::string HelpText(const HelpPage& page, size_t columns) {
  std::string text;
  AddParagraph(text, page.description, columns);
  text += "\nUsage: " + page.usage + '\n';
  for (const std::string& paragraph : page.paragraphs) {
    text += '\n';
    AddParagraph(text, paragraph, columns);
  }
  for (const HelpSection& section : page.sections) {
    if (section.entries.empty()) continue;
    text += '\n' + section.title + ":\n";
    for (const HelpEntry& entry : section.entries) AddEntry(text, entry, columns);
  }
  if (!page.examples.empty()) text += page.examples.size() == 1 ? "\nExample:\n" : "\nExamples:\n";
  for (const std::string& example : page.examples) text += "  " + example + '\n';
  return text;
}

}  // namespace rasterkit::tool
