#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rasterkit::test {

/// A phrase of the word list in a text.
struct Finding {
  size_t line = 0;  // from 1
  std::string text, say;
};

/// Every match of the word list. A phrase may run over the end of a line of a comment or paragraph;
/// its line is the one where it begins. Names of picture files
/// and single words in quotes or code marks (keys of a file format) are not prose and are skipped.
std::vector<Finding> FindWords(std::string_view text);

}  // namespace rasterkit::test
