#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace rasterkit::tool {

/// A JSON value, held as its text. Values of C++ convert to it, so that a result reads as a list of
/// names and values. Text that is not valid UTF-8 is repaired with U+FFFD.
class Json {
 public:
  /// null
  Json() = default;
  Json(std::nullptr_t) {}
  Json(const char* text);
  Json(const std::string& text);
  /// Shortest text that reads back as the same number; null for infinity and NaN.
  Json(double number);
  template <std::integral T>
  Json(T number) : text_(std::to_string(number)) {}
  Json(bool value) : text_(value ? "true" : "false") {}
  /// null if there is no value.
  template <class T>
  Json(const std::optional<T>& value) : Json(value ? Json(*value) : Json()) {}
  template <class T>
  Json(const std::vector<T>& values) : Json(List(values)) {}
  template <class T, size_t kCount>
  Json(const std::array<T, kCount>& values) : Json(List(values)) {}

  /// The value on one line.
  const std::string& Text() const { return text_; }

 private:
  friend class JsonList;
  friend class JsonObject;
  struct Raw {
    std::string text;
  };
  explicit Json(Raw raw) : text_(std::move(raw.text)) {}

  template <class Values>
  static Json List(const Values& values);

  std::string text_ = "null";
};

/// An array under construction.
class JsonList {
 public:
  void Add(const Json& value);
  operator Json() const { return Json(Json::Raw{'[' + items_ + ']'}); }

 private:
  std::string items_;
};

/// An object under construction. Its members stand in the order in which they are added; a name
/// must not be added twice.
class JsonObject {
 public:
  JsonObject& Add(const std::string& name, const Json& value);
  /// Adds all members of another object.
  JsonObject& Add(const JsonObject& other);
  operator Json() const { return Json(Json::Raw{'{' + members_ + '}'}); }

 private:
  std::string members_;
};

/// Prints a value on stdout, on a line of its own.
void PrintLine(const Json& value);

/// null for an empty text.
Json TextOrNull(const std::string& text);

template <class Values>
Json Json::List(const Values& values) {
  JsonList list;
  for (const auto& value : values) list.Add(value);
  return list;
}

}  // namespace rasterkit::tool
