#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/pictures/recipes/color_text.h>
#include <rasterkit/pictures/recipes/slot_of_step.h>
#include <rasterkit/pictures/recipes/step_writer.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {

using Json = StepWriter::Json;

bool IsRecipeText(const std::string& text) {
  return Utf8OfBytes(text) == text && text.find('\0') == std::string::npos;
}

void StepWriter::Slot(const char* key, const std::string& value) {
  Put(key, IsSlotName(value) ? Json(value) : Fail(key, std::string("the slot: ") + kSlotRule));
}

void StepWriter::May(const char* key, const std::vector<std::string>& value) {
  Json list = Json::array();
  for (const std::string& text : value) list.push_back(Text(key, text));
  PutOptional(key, std::move(list));
}

void StepWriter::Check(const char* key, bool holds, const char* reason) {
  if (!holds) Fail(key, reason);
}

Json StepWriter::Number(const char* key, double value, NumberRange range) {
  if (!std::isfinite(value)) return Fail(key, "the number is not finite");
  if (value > range.most) return Fail(key, fmt::format("{} is above {}", value, range.most));
  if (value < range.least) return Fail(key, fmt::format("{} is below {}", value, range.least));
  constexpr double kMostWhole = 1e15;
  const bool isWhole = value == std::floor(value) && std::abs(value) <= kMostWhole;
  if (isWhole) return static_cast<int64_t>(value);
  return value;
}

Json StepWriter::Choice(const char* key, int value, const int* choices, size_t count) {
  const int* const end = choices + count;
  if (std::find(choices, end, value) != end) return value;
  return Fail(key, fmt::format("{} is none of {}", value, fmt::join(choices, end, ", ")));
}

Json StepWriter::Color(const char* key, TColor value) {
  if (value >= 0 && value <= clWhite) return TextOfColor(value);
  return Fail(key, "a color of the system has no red, green and blue");
}

Json StepWriter::Text(const char* key, const std::string& value) {
  return IsRecipeText(value) ? Json(value) : Fail(key, kNoRecipeText);
}

Json StepWriter::Fail(const char* key, const std::string& reason) {
  if (fault_.empty()) fault_ = (*key == '\0' ? path_ : PathOf(key)) + ": " + reason;
  return {};
}

Json StepWriter::Take(const StepWriter& usual, Json first) {
  if (!fault_.empty()) throw RangeError(fault_);
  for (size_t i = 0; i < entries_.size(); ++i) {
    Entry& entry = entries_[i];
    if (entry.isOptional && entry.value == usual.entries_[i].value) continue;
    first[entry.key] = std::move(entry.value);
  }
  return first;
}

}  // namespace rasterkit::detail
