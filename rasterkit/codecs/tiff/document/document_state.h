#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/codecs/tiff/pages/page_chain.h>
#include <rasterkit/codecs/tiff/pages/page_stream.h>
#include <rasterkit/codecs/tiff/pages/tag_reader.h>
#include <rasterkit/codecs/tiff/tiff_document.h>

namespace rasterkit {

struct TiffDocumentReader::State {
  explicit State(TStream& source);

  /// The index of a page counted from 1. Throws RangeError if there is no such page.
  size_t IndexOf(int page) const;
  detail::TagDirectory Directory(int page) const;
  std::unique_ptr<detail::PageStream> StreamOf(int page, TStream& bytes) const;
  uint64_t BytesOf(int page, const PictureWriting* writing) const;

  /// The bytes of a source without a size.
  std::unique_ptr<TMemoryStream> memory;
  TStream& stream;
  detail::TagReader reader;
  detail::PageChain chain;
  /// Differs from that of every other reader of the process.
  const uint64_t number;
};

}  // namespace rasterkit
