#include "tool/arguments/near_word.h"

#include <algorithm>

namespace rasterkit::tool {
namespace {

/// Longer texts are no mistyped words.
constexpr size_t kLongestText = 40;

/// Changes that make one word the other; each pair of letters is exchanged at most once.
size_t Changes(const std::string& from, const std::string& to) {
  // Three rows of the table are needed: exchanged letters look back two.
  std::vector<size_t> beforeLast, last, row(to.size() + 1);
  for (size_t j = 0; j <= to.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= from.size(); ++i) {
    beforeLast = std::move(last);
    last = row;
    row[0] = i;
    for (size_t j = 1; j <= to.size(); ++j) {
      const bool isSame = from[i - 1] == to[j - 1];
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
      const bool isExchanged =
          i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (isExchanged) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[to.size()];
}

/// One letter in three may be wrong.
size_t MostChanges(const std::string& text) {
  return std::max<size_t>(1, text.size() / 3);
}

}  // namespace

std::optional<std::string> NearestWord(const std::string& text,
                                       const std::vector<std::string>& words) {
  if (text.empty() || text.size() > kLongestText) return std::nullopt;
  const std::string* nearest = nullptr;
  size_t fewest = MostChanges(text) + 1;
  for (const std::string& word : words) {
    const size_t changes = Changes(text, word);
    if (changes >= fewest) continue;
    fewest = changes;
    nearest = &word;
  }
  // A word of which every letter is changed is no other spelling.
  if (nearest == nullptr || fewest >= std::min(text.size(), nearest->size())) return std::nullopt;
  return *nearest;
}

std::string DidYouMean(const std::string& text, const std::vector<std::string>& words) {
  const auto word = NearestWord(text, words);
  return word ? "; did you mean " + *word + "?" : std::string();
}

}  // namespace rasterkit::tool
