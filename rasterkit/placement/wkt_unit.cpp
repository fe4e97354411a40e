#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <string>
#include <vector>

#include <rasterkit/placement/wkt_unit.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {
namespace {

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

bool IsProjected(std::string_view word) {
  return IsOneOf(word, {"PROJCS", "PROJCRS", "PROJECTEDCRS"});
}

bool IsGeographic(std::string_view word) {
  return IsOneOf(word, {"GEOGCS", "GEOGCRS", "GEOGRAPHICCRS", "GEODCRS"});
}

bool IsLengthUnit(std::string_view word) {
  return IsOneOf(word, {"UNIT", "LENGTHUNIT"});
}

bool IsAngleUnit(std::string_view word) {
  return IsOneOf(word, {"UNIT", "ANGLEUNIT"});
}

bool IsWordLetter(char letter) {
  return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z') ||
         (letter >= '0' && letter <= '9') || letter == '_' || letter == '.' || letter == '+' ||
         letter == '-';
}

/// Walks nested keywords with their values, without recursion.
class UnitWalker {
 public:
  explicit UnitWalker(std::string_view text) : text_(text) {}

  std::optional<WktUnit> Read() {
    for (size_t at = 0; at < text_.size();) at = Step(at);
    return projected_ ? projected_ : geographic_;
  }

 private:
  struct Level {
    std::string keyword;
    int place = 0;
  };

  size_t Step(size_t at) {
    const char letter = text_[at];
    if (letter == '"') return std::min(text_.find('"', at + 1), text_.size() - 1) + 1;
    if (IsWordLetter(letter)) {
      size_t end = at;
      while (end < text_.size() && IsWordLetter(text_[end])) ++end;
      word_ = UpperCase(text_.substr(at, end - at));
      Use();
      return end;
    }
    if (letter == '[' || letter == '(') levels_.push_back({word_, 0});
    if ((letter == ']' || letter == ')') && !levels_.empty()) levels_.pop_back();
    if (letter == ',' && !levels_.empty()) ++levels_.back().place;
    return at + 1;
  }

  /// Takes the factor of a unit that belongs to a system itself, or to one of its axes.
  void Use() {
    if (levels_.size() < 2) return;
    const std::string& unit = levels_.back().keyword;
    if (unit == "CS" && word_ == "CARTESIAN" && IsGeographic(levels_[levels_.size() - 2].keyword)) {
      // Coordinates from the center of the earth, which are lengths, but not along a map.
      isGeocentric_ = true;
    }
    if (!IsLengthUnit(unit) && !IsAngleUnit(unit)) return;
    if (levels_.back().place != 1) return;
    size_t owner = levels_.size() - 2;
    if (levels_[owner].keyword == "AXIS" && owner > 0) --owner;
    const std::string& system = levels_[owner].keyword;
    double size = 0;
    const auto [rest, error] = std::from_chars(word_.data(), word_.data() + word_.size(), size);
    const bool isNumber = error == std::errc() && rest == word_.data() + word_.size();
    if (!isNumber || !(size > 0) || !std::isfinite(size)) return;
    if (IsProjected(system) && IsLengthUnit(unit) && !projected_) projected_ = WktUnit{true, size};
    const bool isAngle = IsAngleUnit(unit) && !isGeocentric_;
    if (IsGeographic(system) && isAngle && !geographic_) geographic_ = WktUnit{false, size};
    // The geographic system below a projected one says nothing about the map.
    if (IsGeographic(system) && owner > 0 && IsProjected(levels_[owner - 1].keyword)) {
      geographic_.reset();
    }
  }

  std::string_view text_;
  std::string word_;
  std::vector<Level> levels_;
  bool isGeocentric_ = false;
  std::optional<WktUnit> projected_, geographic_;
};

}  // namespace

std::optional<WktUnit> ReadWktUnit(std::string_view wkt) {
  return UnitWalker(wkt).Read();
}

}  // namespace rasterkit::detail
