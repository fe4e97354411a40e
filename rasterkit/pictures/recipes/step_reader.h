#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/pictures/recipes/step_fields.h>

#include <nlohmann/json.hpp>

namespace rasterkit::detail {

/// Reads the keys of an object; see step_fields.h. Faults are FormatError with the path of the
/// value.
class StepReader {
 public:
  /// `known` are keys that the caller reads.
  StepReader(const nlohmann::json& object, std::string path, std::vector<std::string> known = {});

  void Must(const char* key, int& value, NumberRange range);
  void Must(const char* key, double& value, NumberRange range);
  /// One of the numbers.
  template <size_t count>
  void Must(const char* key, int& value, const int (&choices)[count]) {
    if (const auto* found = Required(key)) value = Choice(key, *found, choices, count);
  }
  template <class Value, size_t count>
  void Must(const char* key, Value& value, const Word<Value> (&words)[count]) {
    if (const auto* found = Required(key)) value = WordOf(key, *found, words);
  }
  void Must(const char* key, TColor& value);
  void Must(const char* key, std::string& value);
  void Slot(const char* key, std::string& value);

  void May(const char* key, bool& value);
  void May(const char* key, TColor& value);
  void May(const char* key, int& value, NumberRange range);
  void May(const char* key, double& value, NumberRange range);
  void May(const char* key, std::optional<int>& value, NumberRange range);
  void May(const char* key, std::optional<double>& value, NumberRange range);
  void May(const char* key, std::optional<TColor>& value);
  void May(const char* key, std::optional<std::string>& value);
  void May(const char* key, std::vector<std::string>& value);
  /// The word stands for an empty value.
  void MayOrWord(const char* key, std::optional<int>& value, NumberRange range, const char* word);

  template <size_t count>
  void May(const char* key, std::optional<int>& value, const int (&choices)[count]) {
    if (const auto* found = Find(key)) value = Choice(key, *found, choices, count);
  }
  template <class Value, size_t count>
  void May(const char* key, Value& value, const Word<Value> (&words)[count]) {
    if (const auto* found = Find(key)) value = WordOf(key, *found, words);
  }
  template <class Value, size_t count>
  void May(const char* key, std::optional<Value>& value, const Word<Value> (&words)[count]) {
    if (const auto* found = Find(key)) value = WordOf(key, *found, words);
  }
  /// An object.
  template <class Struct>
  void May(const char* key, std::optional<Struct>& value) {
    if (const auto* found = Find(key)) value = ObjectOf<Struct>(*found, PathOf(key));
  }
  /// A list of objects.
  template <class Struct>
  void May(const char* key, std::vector<Struct>& value) {
    const auto* const found = Find(key);
    if (found == nullptr) return;
    RequireList(key, *found);
    value.clear();
    for (size_t i = 0; i < found->size(); ++i) {
      value.push_back(ObjectOf<Struct>((*found)[i], PathOf(key) + "/" + std::to_string(i)));
    }
  }

  /// States what must hold among several values; `key` is the one at fault, or empty.
  void Check(const char* key, bool holds, const char* reason);

  /// Refuses keys that were not read, then what is missing, then what does not hold.
  void Finish();

  /// The value of a key, which is then known; null without one.
  const nlohmann::json* Find(const char* key);
  /// The same; Finish refuses an object without it.
  const nlohmann::json* Required(const char* key);
  std::string PathOf(const char* key) const;

  template <class Struct>
  static Struct ObjectOf(const nlohmann::json& object, std::string path) {
    StepReader reader(object, std::move(path));
    Struct value{};
    Describe(reader, value);
    reader.Finish();
    return value;
  }

 private:
  template <class Value, size_t count>
  Value WordOf(const char* key, const nlohmann::json& found, const Word<Value> (&words)[count]) {
    std::string names;
    for (const auto& [name, value] : words) {
      if (found == name) return value;
      names += (names.empty() ? "" : ", ") + std::string(name);
    }
    RefuseWord(key, found, names);
  }
  [[noreturn]] void RefuseWord(const char* key, const nlohmann::json& found,
                               const std::string& names) const;
  int Choice(const char* key, const nlohmann::json& found, const int* choices, size_t count) const;
  int Whole(const char* key, const nlohmann::json& found, NumberRange range) const;
  double Number(const char* key, const nlohmann::json& found, NumberRange range) const;
  TColor Color(const char* key, const nlohmann::json& found) const;
  std::string Text(const std::string& path, const nlohmann::json& found) const;
  void RequireList(const char* key, const nlohmann::json& found) const;

  const nlohmann::json& object_;
  const std::string path_;
  std::vector<std::string> known_;
  std::string missing_, broken_;
};

}  // namespace rasterkit::detail
