#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/page_chain.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

constexpr size_t kMostDirectories = 65535;

}  // namespace

PageChain::PageChain(const TagReader& reader) {
  uint64_t at = reader.First();
  while (at != 0) {
    RequireTime();
    const auto link = reader.Link(at);
    if (!link || seen_.contains(at) || seen_.size() >= kMostDirectories) {
      end_ = !link ? ChainEnd::damage : seen_.contains(at) ? ChainEnd::circle : ChainEnd::limit;
      break;
    }
    seen_.insert(at);
    if (link->isCutOff) end_ = ChainEnd::damage;
    const bool belongs = (link->subfileType & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0;
    // The first directory is always a page.
    if (!belongs || directories_.empty()) starts_.push_back(directories_.size());
    directories_.push_back(at);
    at = link->next;
  }
  if (directories_.empty()) throw FormatError("TIFF: the first directory cannot be read");
}

std::span<const uint64_t> PageChain::Following(size_t page) const {
  const size_t first = starts_[page] + 1;
  return std::span(directories_).subspan(first, End(page) - first);
}

uint64_t PageChain::LastAt(size_t page) const {
  return directories_[End(page) - 1];
}

}  // namespace rasterkit::detail
