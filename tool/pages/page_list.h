#pragma once

#include <optional>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// A list of pages as typed, counted from 1: "3", "1-3,7", "5-" for page 5 and all later ones,
/// "last", "all".
class PageList {
 public:
  /// Parses a list; nothing for an invalid text.
  static std::optional<PageList> Parse(const std::string& text);

  /// Returns the pages, in the order given, of a file with `count` pages. A range that reaches
  /// beyond the end adds one page that does not exist, so that the caller can report it.
  std::vector<int> Of(int count) const;

  /// True if the list names exactly one page, regardless of the file.
  bool IsOnePage() const { return ranges_.size() == 1 && ranges_[0].first == ranges_[0].last; }
  /// True if that is the first page.
  bool IsFirstPage() const { return IsOnePage() && ranges_[0].first == 1; }

 private:
  struct Range {
    /// kLast for the last page.
    int first = 1;
    /// kOpen for all later pages.
    int last = 1;
  };
  static constexpr int kOpen = 0, kLast = -1;
  static std::optional<Range> ParseRange(const std::string& text);

  std::vector<Range> ranges_;
};

/// Check of the option. Says what is wrong, or returns an empty string.
std::string CheckPages(const std::string& text);

}  // namespace rasterkit::tool
