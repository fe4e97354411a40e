#include <array>
#include <charconv>
#include <cmath>

#include <fmt/core.h>

#include <rasterkit/placement/side_files.h>
#include <rasterkit/placement/six_numbers.h>
#include <rasterkit/runtime/files/small_file.h>

namespace rasterkit {
namespace {

/// Six lines and notes below them.
constexpr size_t kLongestWorldFile = size_t{64} * 1024;
constexpr size_t kLongestQuote = 30;

bool IsBlank(char letter) {
  return letter == ' ' || (letter >= '\t' && letter <= '\r');
}

/// The word as a message shows it: ASCII only, since the file can hold anything.
std::string Quoted(std::string_view word) {
  std::string text;
  for (const char letter : word.substr(0, kLongestQuote)) {
    text += letter > 0x20 && letter < 0x7F ? letter : '?';
  }
  return "\"" + text + (word.size() > kLongestQuote ? "...\"" : "\"");
}

std::string ReasonAgainst(std::string_view word) {
  double value = 0;
  const auto [rest, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (rest == word.data() + word.size() && (error != std::errc() || !std::isfinite(value))) {
    return Quoted(word) + " is not a finite number";
  }
  if (word.find(',') != std::string_view::npos) {
    return Quoted(word) + " has a comma; a number has a decimal point";
  }
  return Quoted(word) + " is not a number";
}

/// Walks the words of a text and counts its lines.
class Words {
 public:
  explicit Words(std::string_view text) : text_(text) {}

  /// The next word; empty at the end.
  std::string_view Next() {
    while (at_ < text_.size() && IsBlank(text_[at_])) {
      const bool isPair = text_[at_] == '\n' && at_ > 0 && text_[at_ - 1] == '\r';
      if ((text_[at_] == '\n' && !isPair) || text_[at_] == '\r') ++line_;
      ++at_;
    }
    const size_t start = at_;
    while (at_ < text_.size() && !IsBlank(text_[at_])) ++at_;
    return text_.substr(start, at_ - start);
  }

  int Line() const { return line_; }
  bool IsAtEnd() const { return at_ == text_.size(); }

 private:
  std::string_view text_;
  size_t at_ = 0;
  int line_ = 1;
};

/// Shortest text that reads back as the same double, without an exponent for usual sizes.
std::string LineOf(double value) {
  if (value == 0) return "0\n";
  constexpr double kSmallest = 1e-9, kLargest = 1e15;
  const double size = std::abs(value);
  const bool isUsual = size >= kSmallest && size < kLargest;
  std::array<char, 64> text;
  const auto written =
      isUsual ? std::to_chars(text.begin(), text.end(), value, std::chars_format::fixed)
              : std::to_chars(text.begin(), text.end(), value, std::chars_format::scientific);
  return std::string(text.data(), written.ptr) + "\n";
}

}  // namespace

std::string WorldFileText(const Affine& affine) {
  return LineOf(affine.xPerColumn) + LineOf(affine.yPerColumn) + LineOf(affine.xPerRow) +
         LineOf(affine.yPerRow) + LineOf(affine.x) + LineOf(affine.y);
}

namespace detail {

std::optional<double> ParseDecimal(std::string_view word) {
  if (word.starts_with('+') && !word.starts_with("+-")) word.remove_prefix(1);
  double value = 0;
  const auto [rest, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  const bool isWhole = error == std::errc() && rest == word.data() + word.size();
  if (!isWhole || !std::isfinite(value)) return std::nullopt;
  return value;
}

bool PlacesPixels(const Affine& affine) {
  return affine.IsFinite() && affine.Inverse().has_value();
}

WorldFileReading ParseWorldFile(std::string_view text, bool isCut) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  WorldFileReading result;
  std::array<double, 6> numbers{};
  Words words(text);
  for (size_t i = 0; i < numbers.size(); ++i) {
    const std::string_view word = words.Next();
    if (isCut && words.IsAtEnd()) {
      result.reason = fmt::format("line {}: the line is too long", words.Line());
      return result;
    }
    if (word.empty()) {
      result.reason = fmt::format("line {}: the file ends after {} of 6 numbers", words.Line(), i);
      return result;
    }
    const std::optional<double> number = ParseDecimal(word);
    if (!number) {
      result.reason = fmt::format("line {}: {}", words.Line(), ReasonAgainst(word));
      return result;
    }
    numbers[i] = *number;
  }
  const Affine affine{numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5]};
  if (affine.xPerColumn == 0 && affine.yPerColumn == 0) {
    result.reason = "lines 1 and 2: the size of a column is 0";
  } else if (affine.xPerRow == 0 && affine.yPerRow == 0) {
    result.reason = "lines 3 and 4: the size of a row is 0";
  } else if (!PlacesPixels(affine)) {
    result.reason = "lines 1 to 4: a pixel has no area";
  } else {
    result.affine = affine;
  }
  return result;
}

std::optional<WorldFileReading> ReadWorldFileAt(const std::string& fileName) {
  const std::optional<SmallFile> file = ReadSmallFile(fileName, kLongestWorldFile);
  if (!file) return std::nullopt;
  return ParseWorldFile(file->bytes, file->isCut);
}

}  // namespace detail
}  // namespace rasterkit
