#include <mutex>
#include <utility>

#include <rasterkit/strings/format_text.h>

namespace rasterkit {
namespace {

struct Mark {
  std::mutex mutex;
  std::string text;
};

Mark& TheMark() {
  static Mark mark;
  return mark;
}

}  // namespace

std::string FormatText(std::string_view pattern, std::span<const std::string> values) {
  std::string text;
  size_t used = 0;
  for (size_t i = 0; i < pattern.size(); ++i) {
    const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
    const bool isPlace = pattern[i] == '%' && (next == 'd' || next == 's');
    if (pattern[i] == '%' && next == '%') {
      text += '%';
      ++i;
    } else if (isPlace && used < values.size()) {
      text += values[used++];
      ++i;
    } else {
      text += pattern[i];
    }
  }
  return text;
}

std::string DecimalMark() {
  const std::lock_guard lock(TheMark().mutex);
  return TheMark().text.empty() ? "." : TheMark().text;
}

void SetDecimalMark(std::string mark) {
  const std::lock_guard lock(TheMark().mutex);
  TheMark().text = std::move(mark);
}

}  // namespace rasterkit
