#include "tool/pages/page_list.h"

#include <algorithm>
#include <charconv>
#include <sstream>

namespace rasterkit::tool {
namespace {

constexpr int kMostPage = 1000000;

std::optional<int> ParsePage(const std::string& text) {
  int page = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, page);
  if (error != std::errc() || stop != end || page < 1 || page > kMostPage) return std::nullopt;
  return page;
}

}  // namespace

std::optional<PageList::Range> PageList::ParseRange(const std::string& text) {
  if (text == "all") return Range{1, kOpen};
  if (text == "last") return Range{kLast, kLast};
  const size_t dash = text.find('-');
  const auto first = ParsePage(text.substr(0, dash));
  if (!first) return std::nullopt;
  if (dash == std::string::npos) return Range{*first, *first};
  const std::string rest = text.substr(dash + 1);
  if (rest.empty() || rest == "last") return Range{*first, kOpen};
  const auto last = ParsePage(rest);
  if (!last || *last < *first) return std::nullopt;
  return Range{*first, *last};
}

std::optional<PageList> PageList::Parse(const std::string& text) {
  PageList list;
  std::stringstream stream(text + ",");
  for (std::string part; std::getline(stream, part, ',');) {
    const auto range = ParseRange(part);
    if (!range) return std::nullopt;
    list.ranges_.push_back(*range);
  }
  return list;
}

std::vector<int> PageList::Of(int count) const {
  std::vector<int> pages;
  for (const Range& range : ranges_) {
    if (range.first == kLast) {
      pages.push_back(count);
      continue;
    }
    const int last = range.last == kOpen ? std::max(count, range.first) : range.last;
    for (int page = range.first; page <= std::min(last, count); ++page) pages.push_back(page);
    if (last > count) pages.push_back(std::max(range.first, count + 1));
  }
  return pages;
}

std::string CheckPages(const std::string& text) {
  if (PageList::Parse(text)) return {};
  return "pages are a list such as 3 or 1-3,7 or 5-, counted from 1, or last, or all, not '" +
         text + "'";
}

}  // namespace rasterkit::tool
