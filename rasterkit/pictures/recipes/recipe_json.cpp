#include <algorithm>
#include <cctype>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/pictures/recipes/recipe_json.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using nlohmann::json;

constexpr size_t kMostDepth = 8;

/// Line and column of the last of `count` bytes, from 1; a column is a character.
std::string PlaceOf(std::string_view text, size_t count) {
  size_t line = 1, column = 1;
  for (const char byte : text.substr(0, count - std::min<size_t>(count, 1))) {
    const bool isContinued = (static_cast<uint8_t>(byte) & 0xC0) == 0x80;
    if (!isContinued) ++column;
    if (byte != '\n') continue;
    ++line;
    column = 1;
  }
  return fmt::format("line {}, column {}", line, column);
}

/// What the parser says behind its own place: "syntax error while parsing value - unexpected end".
std::string ReasonOf(std::string_view what) {
  for (const std::string_view mark : {" - ", ": ", "] "}) {
    const size_t at = what.find(mark);
    if (at != std::string_view::npos) return std::string(what.substr(at + mark.size()));
  }
  return std::string(what);
}

/// Text that may hold anything as one short line of UTF-8.
std::string OneLine(std::string_view text) {
  constexpr size_t kMostBytes = 80;
  std::string line;
  for (const char byte : text) {
    const auto code = static_cast<uint8_t>(byte);
    const bool isWhole = code < 0x80 || (code & 0xC0) == 0xC0;
    if (line.size() >= kMostBytes && isWhole) return line + "...";
    line += code < ' ' || code == 0x7F ? '?' : byte;
  }
  return line;
}

/// Builds the value, and refuses what the parser accepts: keys that stand twice, deep nesting.
class ValueBuilder {
 public:
  explicit ValueBuilder(std::string_view text) : text_(text) {}

  json Take() { return std::move(root_); }

  bool null() { return Put(nullptr); }
  bool boolean(bool value) { return Put(value); }
  bool number_integer(json::number_integer_t value) { return Put(value); }
  bool number_unsigned(json::number_unsigned_t value) { return Put(value); }
  bool number_float(json::number_float_t value, const std::string&) { return Put(value); }
  bool string(std::string& value) { return Put(std::move(value)); }
  bool binary(json::binary_t&) { return false; }

  bool start_object(size_t) { return Open(json::object()); }
  bool end_object() { return Close(); }
  bool start_array(size_t) { return Open(json::array()); }
  bool end_array() { return Close(); }

  bool key(std::string& name) {
    Level& level = open_.back();
    if (level.value->contains(name)) {
      throw FormatError(fmt::format("{}: the key \"{}\" stands twice", Path(), PathPart(name)));
    }
    level.key = std::move(name);
    return true;
  }

  template <class Exception>
  bool parse_error(size_t position, const std::string&, const Exception& error) {
    throw FormatError(
        fmt::format("{}: {}", PlaceOf(text_, position), OneLine(ReasonOf(error.what()))));
  }

 private:
  struct Level {
    json* value;
    std::string key;
  };

  json* Add(json value) {
    if (open_.empty()) {
      root_ = std::move(value);
      return &root_;
    }
    Level& level = open_.back();
    if (level.value->is_array()) {
      level.value->push_back(std::move(value));
      return &level.value->back();
    }
    return &((*level.value)[level.key] = std::move(value));
  }

  bool Put(json value) {
    Add(std::move(value));
    return true;
  }

  bool Open(json value) {
    if (open_.size() >= kMostDepth) {
      throw FormatError(
          fmt::format("{}: objects and lists are nested deeper than {}", Path(), kMostDepth));
    }
    open_.push_back({Add(std::move(value)), {}});
    return true;
  }

  bool Close() {
    open_.pop_back();
    return true;
  }

  /// Of the innermost object or list.
  std::string Path() const {
    std::string path;
    for (size_t i = 0; i + 1 < open_.size(); ++i) {
      const Level& level = open_[i];
      path += '/';
      path +=
          level.value->is_array() ? std::to_string(level.value->size() - 1) : PathPart(level.key);
    }
    return path.empty() ? "/" : path;
  }

  const std::string_view text_;
  json root_;
  /// Places of values stay while they are open: only the innermost one grows.
  std::vector<Level> open_;
};

}  // namespace

json ParseRecipeJson(std::string_view text) {
  ValueBuilder builder(text);
  json::sax_parse(text.begin(), text.end(), &builder);
  return builder.Take();
}

std::string PathPart(std::string_view key) {
  std::string part;
  for (const char byte : key) {
    if (byte == '~') {
      part += "~0";
    } else if (byte == '/') {
      part += "~1";
    } else {
      part += byte;
    }
  }
  return OneLine(part);
}

std::string ShownValue(const json& value) {
  if (value.is_object()) return "an object";
  if (value.is_array()) return "a list";
  return OneLine(value.dump());
}

}  // namespace rasterkit::detail
