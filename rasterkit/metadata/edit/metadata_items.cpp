#include <algorithm>
#include <string>

#include <rasterkit/metadata/edit/metadata_items.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {
namespace {

constexpr uint16_t kItems = 42112;
constexpr std::string_view kStart = "<Item", kEnd = "</Item>";

/// The end of the item that starts at `at`, behind the blanks that follow it.
size_t EndOfItem(const std::string& text, size_t at) {
  const size_t tagEnd = text.find('>', at);
  if (tagEnd == std::string::npos) return text.size();
  size_t end = tagEnd + 1;
  if (text[tagEnd - 1] != '/') {
    const size_t close = text.find(kEnd, tagEnd);
    // Without its end, the rest belongs to it.
    if (close == std::string::npos) return text.size();
    end = close + kEnd.size();
  }
  return std::min(text.find_first_not_of(" \t\r\n", end), text.size());
}

bool RemoveFrom(std::string& text, std::initializer_list<std::string_view> words) {
  bool isChanged = false;
  for (size_t at = text.find(kStart); at != std::string::npos; at = text.find(kStart, at)) {
    const size_t end = EndOfItem(text, at);
    const std::string item = LowerCase(text.substr(at, end - at));
    const bool goes = std::any_of(words.begin(), words.end(), [&](std::string_view word) {
      return item.find(word) != std::string::npos;
    });
    if (goes) {
      text.erase(at, end - at);
      isChanged = true;
    } else {
      at = end;
    }
  }
  return isChanged;
}

}  // namespace

void RemoveItems(Metadata& metadata, std::initializer_list<std::string_view> words) {
  std::erase_if(metadata.tiffTags, [&](TagValue& tag) {
    if (tag.tag != kItems) return false;
    std::string text(tag.bytes.begin(), tag.bytes.end());
    if (!RemoveFrom(text, words)) return false;
    tag.bytes.assign(text.begin(), text.end());
    tag.count = tag.bytes.size();
    return text.find(kStart) == std::string::npos;
  });
}

}  // namespace rasterkit::detail
