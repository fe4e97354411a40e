#pragma once

#include <optional>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// Returns the word that `text` most likely stands for: the one with the fewest changes (a letter
/// too many, too few, wrong, or exchanged with the next one), or nothing if no word is near. The
/// first one of several.
std::optional<std::string> NearestWord(const std::string& text,
                                       const std::vector<std::string>& words);

/// "; did you mean WORD?", or an empty text.
std::string DidYouMean(const std::string& text, const std::vector<std::string>& words);

}  // namespace rasterkit::tool
