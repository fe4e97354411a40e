#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/pictures/recipes/step_fields.h>

#include <nlohmann/json.hpp>

namespace rasterkit::detail {

/// True for a text that a reader takes.
bool IsRecipeText(const std::string& text);
inline constexpr const char* kNoRecipeText = "the text is no UTF-8, or has a zero in it";

/// Writes the keys of an object; see step_fields.h. What a reader would refuse is a RangeError with
/// the path of the value.
class StepWriter {
 public:
  using Json = nlohmann::ordered_json;

  explicit StepWriter(std::string path) : path_(std::move(path)) {}

  void Must(const char* key, int value, NumberRange range) { Put(key, Number(key, value, range)); }
  void Must(const char* key, double value, NumberRange range) {
    Put(key, Number(key, value, range));
  }
  template <size_t count>
  void Must(const char* key, int value, const int (&choices)[count]) {
    Put(key, Choice(key, value, choices, count));
  }
  template <class Value, size_t count>
  void Must(const char* key, const Value& value, const Word<Value> (&words)[count]) {
    Put(key, NameOf(key, value, words));
  }
  void Must(const char* key, TColor value) { Put(key, Color(key, value)); }
  void Must(const char* key, const std::string& value) { Put(key, Text(key, value)); }
  void Slot(const char* key, const std::string& value);

  void May(const char* key, bool value) { PutOptional(key, value); }
  void May(const char* key, TColor value) { PutOptional(key, Color(key, value)); }
  void May(const char* key, int value, NumberRange range) {
    PutOptional(key, Number(key, value, range));
  }
  void May(const char* key, double value, NumberRange range) {
    PutOptional(key, Number(key, value, range));
  }
  template <class Value>
  void May(const char* key, const std::optional<Value>& value, NumberRange range) {
    PutOptional(key, value ? Number(key, *value, range) : Json());
  }
  void May(const char* key, const std::optional<TColor>& value) {
    PutOptional(key, value ? Color(key, *value) : Json());
  }
  void May(const char* key, const std::optional<std::string>& value) {
    PutOptional(key, value ? Text(key, *value) : Json());
  }
  void May(const char* key, const std::vector<std::string>& value);
  void MayOrWord(const char* key, const std::optional<int>& value, NumberRange range,
                 const char* word) {
    PutOptional(key, value ? Number(key, *value, range) : Json(word));
  }
  template <size_t count>
  void May(const char* key, const std::optional<int>& value, const int (&choices)[count]) {
    PutOptional(key, value ? Choice(key, *value, choices, count) : Json());
  }
  template <class Value, size_t count>
  void May(const char* key, const Value& value, const Word<Value> (&words)[count]) {
    PutOptional(key, NameOf(key, value, words));
  }
  template <class Value, size_t count>
  void May(const char* key, const std::optional<Value>& value, const Word<Value> (&words)[count]) {
    PutOptional(key, value ? NameOf(key, *value, words) : Json());
  }
  template <class Struct>
  void May(const char* key, const std::optional<Struct>& value) {
    PutOptional(key, value ? ObjectOf(*value, PathOf(key)) : Json());
  }
  template <class Struct>
  void May(const char* key, const std::vector<Struct>& value) {
    Json list = Json::array();
    for (size_t i = 0; i < value.size(); ++i) {
      list.push_back(ObjectOf(value[i], PathOf(key) + "/" + std::to_string(i)));
    }
    PutOptional(key, std::move(list));
  }

  void Check(const char* key, bool holds, const char* reason);

  /// The object: `first`, and the keys behind. Values that are as in a new struct are omitted.
  template <class Struct>
  static Json ObjectOf(Struct value, const std::string& path, Json first = Json::object()) {
    StepWriter usual(path), stated(path);
    Struct fresh{};
    Describe(usual, fresh);
    Describe(stated, value);
    return stated.Take(usual, std::move(first));
  }

 private:
  struct Entry {
    const char* key;
    Json value;
    bool isOptional;
  };

  template <class Value, size_t count>
  Json NameOf(const char* key, const Value& value, const Word<Value> (&words)[count]) {
    for (const auto& word : words) {
      if (word.value == value) return word.name;
    }
    return Fail(key, "the value has no name in recipes");
  }
  void Put(const char* key, Json value) { entries_.push_back({key, std::move(value), false}); }
  void PutOptional(const char* key, Json value) {
    entries_.push_back({key, std::move(value), true});
  }
  Json Number(const char* key, double value, NumberRange range);
  Json Choice(const char* key, int value, const int* choices, size_t count);
  Json Color(const char* key, TColor value);
  Json Text(const char* key, const std::string& value);
  std::string PathOf(const char* key) const { return path_ + "/" + key; }
  /// Keeps the first fault.
  Json Fail(const char* key, const std::string& reason);
  Json Take(const StepWriter& usual, Json first);

  const std::string path_;
  std::vector<Entry> entries_;
  std::string fault_;
};

}  // namespace rasterkit::detail
