#pragma once

#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "tests/docs/find_words.h"

namespace rasterkit::test {

/// All of one area, printed; the counts are what a test compares.
class WordArea {
 public:
  explicit WordArea(std::string name) : name_(std::move(name)) {}

  void Check(const std::string& place, std::string_view text) {
    for (const Finding& finding : FindWords(text)) {
      const std::string line = place + ":" + std::to_string(finding.line) + ": " + finding.text +
                               " -> " + finding.say + "\n";
      all_ += line;
      ++count_;
    }
    ++places_;
  }

  size_t Count() const { return count_; }
  size_t Places() const { return places_; }

  /// At most the first 200 lines of what was found.
  std::string Report() const {
    size_t end = 0;
    for (int i = 0; i < 200 && end < all_.size(); ++i) end = all_.find('\n', end) + 1;
    return name_ + ": " + std::to_string(count_) + " findings in " + std::to_string(places_) +
           " places\n" + all_.substr(0, end);
  }

  ~WordArea() {
    const char* file = std::getenv("RASTERKIT_WORDS_FILE");
    if (file != nullptr) std::ofstream(file, std::ios::app) << all_;
  }
  WordArea(const WordArea&) = delete;
  WordArea& operator=(const WordArea&) = delete;

 private:
  std::string name_, all_;
  size_t count_ = 0, places_ = 0;
};

}  // namespace rasterkit::test
