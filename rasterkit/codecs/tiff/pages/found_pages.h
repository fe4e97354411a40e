#pragma once

#include <optional>
#include <vector>

#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/codecs/tiff/pages/tag_reader.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A stream that can be read at any place: pipes have no size and give their bytes only once.
class Seekable {
 public:
  explicit Seekable(TStream& stream) : stream_(&stream) {
    if (stream.Size() > stream.Position()) return;
    memory_.emplace(stream.ReadToEnd());
    stream_ = &*memory_;
  }
  TStream& Stream() { return *stream_; }

 private:
  TStream* stream_;
  std::optional<TMemoryStream> memory_;
};

/// Throws FormatError if it cannot be read.
TagDirectory FirstDirectory(const TagReader& reader);

/// Throws LimitError for a page that is too wide or too high for any picture.
void RequireSides(const PageFacts& facts);

/// A smaller copy or a mask of the first page, and the place of its directory.
struct ExtraPage {
  uint64_t at = 0;
  TiffExtraPageHeader header;
};

/// Lists those that can be read, in the order of ReadTiffExtraPages.
std::vector<ExtraPage> ExtraPagesOf(const TagReader& reader);

}  // namespace rasterkit::detail
