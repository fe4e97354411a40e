#include <charconv>

#include <rasterkit/placement/geo_keys.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {
namespace {

bool IsWord(char letter) {
  return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z') ||
         (letter >= '0' && letter <= '9') || letter == '_';
}

/// Walks a text of keywords, quoted texts, numbers and nested brackets, without recursion.
class Walker {
 public:
  explicit Walker(std::string_view text) : text_(text) {}

  WktHead Read() {
    while (at_ < text_.size()) Step();
    return head_;
  }

 private:
  void Step() {
    const char letter = text_[at_];
    if (letter == '"') return ReadQuoted();
    if (IsWord(letter)) return ReadWord();
    if (letter == '[' || letter == '(') {
      ++depth_;
      if (depth_ == 2) {
        inner_ = word_;
        place_ = 0;
        isEpsg_ = false;
      }
    } else if (letter == ']' || letter == ')') {
      --depth_;
      // What follows a whole definition is not part of it.
      if (depth_ <= 0) at_ = text_.size();
    } else if (letter == ',' && depth_ == 2) {
      ++place_;
    }
    if (at_ < text_.size()) ++at_;
  }

  void ReadQuoted() {
    std::string quoted;
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == '"') {
        const bool isDoubled = at_ + 1 < text_.size() && text_[at_ + 1] == '"';
        if (!isDoubled) break;
        ++at_;
      }
      quoted += text_[at_];
    }
    ++at_;
    if (depth_ == 1 && !hasName_) {
      head_.name = Trim(Utf8OfBytes(quoted));
      hasName_ = true;
    }
    Use(quoted);
  }

  void ReadWord() {
    const size_t start = at_;
    while (at_ < text_.size() && IsWord(text_[at_])) ++at_;
    word_ = UpperCase(text_.substr(start, at_ - start));
    if (depth_ == 0 && head_.keyword.empty()) head_.keyword = word_;
    Use(word_);
  }

  /// AUTHORITY["EPSG","25832"] and ID["EPSG",25832] directly below the definition.
  void Use(const std::string& value) {
    if (depth_ != 2 || (inner_ != "AUTHORITY" && inner_ != "ID")) return;
    if (place_ == 0) isEpsg_ = CompareText(value, "EPSG") == 0;
    if (place_ != 1 || !isEpsg_) return;
    int code = 0;
    const auto [rest, error] = std::from_chars(value.data(), value.data() + value.size(), code);
    if (error == std::errc() && rest == value.data() + value.size() && code > 0) head_.epsg = code;
  }

  std::string_view text_;
  size_t at_ = 0;
  int depth_ = 0;
  std::string word_, inner_;
  int place_ = 0;
  bool isEpsg_ = false, hasName_ = false;
  WktHead head_;
};

}  // namespace

WktHead ReadWktHead(std::string_view wkt) {
  return Walker(wkt).Read();
}

}  // namespace rasterkit::detail
