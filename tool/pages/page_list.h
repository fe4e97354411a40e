#pragma once

#include <optional>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// Pages as people name them, counted from 1: "3", "1-3,7", "5-" for all from the fifth on.
class PageList {
 public:
  /// Nothing for a text that is no such list.
  static std::optional<PageList> Parse(const std::string& text);

  /// The pages in the order named, of a file with `count` pages; what the file does not have comes
  /// too, once for each range that reaches beyond the end: the caller says so.
  std::vector<int> Of(int count) const;

  /// True when the list names one page, whatever the file.
  bool IsOnePage() const { return ranges_.size() == 1 && ranges_[0].first == ranges_[0].last; }

 private:
  struct Range {
    int first = 1;
    /// kOpen for all that follow.
    int last = 1;
  };
  static constexpr int kOpen = 0;
  static std::optional<Range> ParseRange(const std::string& text);

  std::vector<Range> ranges_;
};

/// For options: a sentence, or nothing when the text is such a list.
std::string CheckPages(const std::string& text);

}  // namespace rasterkit::tool
