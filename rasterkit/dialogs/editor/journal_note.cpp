#include <charconv>
#include <map>

#include <fmt/core.h>

#include <rasterkit/dialogs/editor/journal_note.h>
#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

constexpr std::string_view kKind = "rasterkit-journal ";
constexpr std::string_view kFirstLine = "rasterkit-journal 1";

/// A name can hold any byte; a line cannot.
std::string OnOneLine(const std::string& name) {
  std::string text;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    text += byte < ' ' || c == '%' ? fmt::format("%{:02x}", byte) : std::string(1, c);
  }
  return text;
}

template <typename Number>
bool ReadNumber(std::string_view text, Number& number, int base = 10) {
  const char* const end = text.data() + text.size();
  std::from_chars_result read{};
  if constexpr (std::is_floating_point_v<Number>) {
    read = std::from_chars(text.data(), end, number);
  } else {
    read = std::from_chars(text.data(), end, number, base);
  }
  return read.ec == std::errc() && read.ptr == end;
}

std::optional<std::string> NameIn(const std::string& text) {
  constexpr int kHex = 16;
  std::string name;
  for (size_t i = 0; i < text.size(); ++i) {
    unsigned byte = 0;
    if (text[i] != '%') {
      name += text[i];
    } else if (i + 2 < text.size() &&
               ReadNumber(std::string_view(text).substr(i + 1, 2), byte, kHex)) {
      name += static_cast<char>(byte);
      i += 2;
    } else {
      return std::nullopt;
    }
  }
  return name;
}

bool Take(const std::map<std::string, std::string>& values, JournalNote& note) {
  const auto value = [&](const char* key) {
    const auto found = values.find(key);
    return found == values.end() ? std::string() : found->second;
  };
  const std::optional<std::string> name = NameIn(value("file"));
  if (!name || name->empty()) return false;
  note.file = *name;
  const std::optional<std::string> target = NameIn(value("target"));
  if (!target) return false;
  note.target = *target;
  return ReadNumber(value("bytes"), note.bytes) && ReadNumber(value("changed"), note.changed) &&
         ReadNumber(value("page"), note.page) && ReadNumber(value("dpi"), note.dpi) &&
         ReadNumber(value("place"), note.place);
}

bool IsSound(const JournalNote& note) {
  constexpr double kMostDpi = 100000;
  return note.page >= 1 && note.dpi >= 0 && note.dpi <= kMostDpi &&
         note.place <= note.recipe.steps.size() && !note.recipe.steps.empty();
}

/// Faults of syntax start with their line; any other fault may be none to another version.
bool IsSyntax(const Error& error) {
  return error.Reason().starts_with("line ");
}

/// `isDamaged` tells why there is no note.
std::optional<JournalNote> Read(const std::string& text, bool& isDamaged) {
  isDamaged = true;
  std::map<std::string, std::string> values;
  size_t start = 0;
  for (bool isFirst = true;; isFirst = false) {
    const size_t end = text.find('\n', start);
    if (end == std::string::npos) return std::nullopt;
    const std::string line = text.substr(start, end - start);
    start = end + 1;
    if (isFirst && line != kFirstLine) {
      isDamaged = !line.starts_with(kKind);
      return std::nullopt;
    }
    if (line.empty()) break;
    const size_t space = line.find(' ');
    if (space == std::string::npos) return std::nullopt;
    values[line.substr(0, space)] = line.substr(space + 1);
  }
  JournalNote note;
  if (!Take(values, note)) return std::nullopt;
  try {
    note.recipe = ReadRecipe(text.substr(start));
  } catch (const Error& error) {
    isDamaged = IsSyntax(error);
    return std::nullopt;
  }
  if (!IsSound(note)) return std::nullopt;
  return note;
}

}  // namespace

std::string WriteJournalNote(const JournalNote& note) {
  return fmt::format(
      "{}\nfile {}\nbytes {}\nchanged {}\npage {}\ndpi {}\nplace {}\ntarget {}\n\n{}", kFirstLine,
      OnOneLine(note.file), note.bytes, note.changed, note.page, note.dpi, note.place,
      OnOneLine(note.target), WriteRecipe(note.recipe));
}

std::optional<JournalNote> ReadJournalNote(const std::string& text) {
  bool isDamaged = false;
  return Read(text, isDamaged);
}

bool IsDamagedJournalNote(const std::string& text) {
  bool isDamaged = false;
  return !Read(text, isDamaged) && isDamaged;
}

}  // namespace rasterkit
