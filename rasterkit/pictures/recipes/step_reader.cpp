#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/pictures/recipes/color_text.h>
#include <rasterkit/pictures/recipes/recipe_json.h>
#include <rasterkit/pictures/recipes/slot_of_step.h>
#include <rasterkit/pictures/recipes/step_reader.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using nlohmann::json;

[[noreturn]] void Refuse(const std::string& path, const std::string& reason) {
  throw FormatError(path + ": " + reason);
}

}  // namespace

StepReader::StepReader(const json& object, std::string path, std::vector<std::string> known)
    : object_(object), path_(std::move(path)), known_(std::move(known)) {
  if (!object.is_object()) {
    Refuse(path_.empty() ? "/" : path_, ShownValue(object) + " is no object");
  }
}

void StepReader::Must(const char* key, int& value, NumberRange range) {
  if (const json* found = Required(key)) value = Whole(key, *found, range);
}

void StepReader::Must(const char* key, double& value, NumberRange range) {
  if (const json* found = Required(key)) value = Number(key, *found, range);
}

void StepReader::Must(const char* key, TColor& value) {
  if (const json* found = Required(key)) value = Color(key, *found);
}

void StepReader::Must(const char* key, std::string& value) {
  if (const json* found = Required(key)) value = Text(PathOf(key), *found);
}

void StepReader::Slot(const char* key, std::string& value) {
  const json* const found = Required(key);
  if (found == nullptr) return;
  value = Text(PathOf(key), *found);
  if (!IsSlotName(value)) Refuse(PathOf(key), ShownValue(*found) + " is no name: " + kSlotRule);
}

void StepReader::May(const char* key, bool& value) {
  const json* const found = Find(key);
  if (found == nullptr) return;
  if (!found->is_boolean()) Refuse(PathOf(key), ShownValue(*found) + " is neither true nor false");
  value = found->get<bool>();
}

void StepReader::May(const char* key, TColor& value) {
  if (const json* found = Find(key)) value = Color(key, *found);
}

void StepReader::May(const char* key, int& value, NumberRange range) {
  if (const json* found = Find(key)) value = Whole(key, *found, range);
}

void StepReader::May(const char* key, double& value, NumberRange range) {
  if (const json* found = Find(key)) value = Number(key, *found, range);
}

void StepReader::May(const char* key, std::optional<int>& value, NumberRange range) {
  if (const json* found = Find(key)) value = Whole(key, *found, range);
}

void StepReader::May(const char* key, std::optional<double>& value, NumberRange range) {
  if (const json* found = Find(key)) value = Number(key, *found, range);
}

void StepReader::May(const char* key, std::optional<TColor>& value) {
  if (const json* found = Find(key)) value = Color(key, *found);
}

void StepReader::May(const char* key, std::optional<std::string>& value) {
  if (const json* found = Find(key)) value = Text(PathOf(key), *found);
}

void StepReader::May(const char* key, std::vector<std::string>& value) {
  const json* const found = Find(key);
  if (found == nullptr) return;
  RequireList(key, *found);
  value.clear();
  for (size_t i = 0; i < found->size(); ++i) {
    value.push_back(Text(fmt::format("{}/{}", PathOf(key), i), (*found)[i]));
  }
}

void StepReader::MayOrWord(const char* key, std::optional<int>& value, NumberRange range,
                           const char* word) {
  const json* const found = Find(key);
  if (found == nullptr) return;
  if (*found == word) {
    value.reset();
  } else if (found->is_number()) {
    value = Whole(key, *found, range);
  } else {
    Refuse(PathOf(key), fmt::format("{} is neither a number nor \"{}\"", ShownValue(*found), word));
  }
}

void StepReader::Check(const char* key, bool holds, const char* reason) {
  if (holds || !broken_.empty()) return;
  broken_ = (*key == '\0' ? path_ : PathOf(key)) + ": " + reason;
}

void StepReader::Finish() {
  for (const auto& [key, value] : object_.items()) {
    if (std::find(known_.begin(), known_.end(), key) != known_.end()) continue;
    Refuse(path_ + "/" + PathPart(key),
           fmt::format("unknown key; the keys here are {}", fmt::join(known_, ", ")));
  }
  for (const std::string* fault : {&missing_, &broken_}) {
    if (!fault->empty()) throw FormatError(*fault);
  }
}

const json* StepReader::Find(const char* key) {
  known_.emplace_back(key);
  const auto found = object_.find(key);
  return found == object_.end() ? nullptr : &*found;
}

const json* StepReader::Required(const char* key) {
  const json* const found = Find(key);
  if (found == nullptr && missing_.empty()) {
    missing_ = fmt::format("{}: the key {} is missing", path_.empty() ? "/" : path_, key);
  }
  return found;
}

std::string StepReader::PathOf(const char* key) const {
  return path_ + "/" + key;
}

void StepReader::RefuseWord(const char* key, const json& found, const std::string& names) const {
  Refuse(PathOf(key), fmt::format("{} is none of {}", ShownValue(found), names));
}

int StepReader::Choice(const char* key, const json& found, const int* choices, size_t count) const {
  const int* const end = choices + count;
  const auto is = [&](int choice) { return found.is_number() && found == choice; };
  const int* const choice = std::find_if(choices, end, is);
  if (choice != end) return *choice;
  RefuseWord(key, found, fmt::format("{}", fmt::join(choices, end, ", ")));
}

int StepReader::Whole(const char* key, const json& found, NumberRange range) const {
  const double number = Number(key, found, range);
  if (number != std::floor(number)) {
    Refuse(PathOf(key), ShownValue(found) + " is no whole number");
  }
  return static_cast<int>(number);
}

double StepReader::Number(const char* key, const json& found, NumberRange range) const {
  if (!found.is_number()) Refuse(PathOf(key), ShownValue(found) + " is no number");
  const auto number = found.get<double>();
  if (number > range.most) {
    Refuse(PathOf(key), fmt::format("{} is above {}", ShownValue(found), range.most));
  }
  if (!(number >= range.least)) {
    Refuse(PathOf(key), fmt::format("{} is below {}", ShownValue(found), range.least));
  }
  return number;
}

TColor StepReader::Color(const char* key, const json& found) const {
  const std::string text = found.is_string() ? found.get<std::string>() : std::string();
  const auto color = ColorOfText(text);
  if (!color) Refuse(PathOf(key), ShownValue(found) + " is no color such as \"#FF8000\"");
  return *color;
}

std::string StepReader::Text(const std::string& path, const json& found) const {
  if (!found.is_string()) Refuse(path, ShownValue(found) + " is no text");
  auto text = found.get<std::string>();
  if (text.find('\0') != std::string::npos) Refuse(path, "the text has a zero in it");
  return text;
}

void StepReader::RequireList(const char* key, const json& found) const {
  if (!found.is_array()) Refuse(PathOf(key), ShownValue(found) + " is no list");
}

}  // namespace rasterkit::detail
