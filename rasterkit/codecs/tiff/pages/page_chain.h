#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include <rasterkit/codecs/tiff/pages/tag_reader.h>

namespace rasterkit::detail {

/// The directories of a file in the order of its chain, sorted into pages.
class PageChain {
 public:
  /// Walks the chain, which may be circular, at most 65,535 directories long. Throws FormatError if
  /// the first directory cannot be read.
  explicit PageChain(const TagReader& reader);

  int Pages() const { return static_cast<int>(starts_.size()); }
  /// The directory of a page, counted from 0.
  uint64_t At(size_t page) const { return directories_[starts_[page]]; }
  /// Smaller copies and masks that follow a page.
  std::span<const uint64_t> Following(size_t page) const;
  /// True for a directory of any page.
  bool Contains(uint64_t at) const { return seen_.contains(at); }
  /// Why there can be further pages; empty if there are none.
  std::string Lost() const { return LostPages(end_, Pages()); }
  /// The last directory that belongs to a page by its place in the chain.
  uint64_t LastAt(size_t page) const;

 private:
  size_t End(size_t page) const {
    return page + 1 < starts_.size() ? starts_[page + 1] : directories_.size();
  }

  std::vector<uint64_t> directories_;
  std::vector<size_t> starts_;
  std::unordered_set<uint64_t> seen_;
  ChainEnd end_ = ChainEnd::last;
};

}  // namespace rasterkit::detail
