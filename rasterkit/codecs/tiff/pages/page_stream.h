#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/pages/page_chain.h>
#include <rasterkit/codecs/tiff/pages/tag_reader.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A TIFF file whose first directory is another one of its directories: reads the file with a
/// changed header, so that whoever reads the first page reads that one.
class PageStream : public TStream {
 public:
  /// `stream` is that of the reader and must outlive this object.
  PageStream(TStream& stream, const TagReader& reader, uint64_t directoryAt);

  /// Ends the chain of directories after this one. The header of the page states the pages of the
  /// whole chain.
  void EndAfter(const TagReader& reader, uint64_t directoryAt, const PageChain& chain);
  /// Pages of the whole file; 0 if only the stream itself tells.
  int Pages() const { return pages_; }
  /// What is known of further pages of the whole file (see PictureHeader::lostPages).
  const std::string& LostPages() const { return lostPages_; }
  /// Keeps the bytes that this stream reads.
  void Own(std::unique_ptr<TStream> stream) { owned_ = std::move(stream); }

  size_t Read(std::span<uint8_t> target) override;
  /// Always throws.
  void Write(std::span<const uint8_t> source) override;
  uint64_t Position() const override { return position_; }
  void SetPosition(uint64_t position) override { position_ = position; }
  uint64_t Size() const override { return size_; }

 private:
  struct Patch {
    uint64_t at = 0;
    std::vector<uint8_t> bytes;
  };
  void SetNumber(const TagReader& reader, uint64_t at, uint64_t number);

  TStream& stream_;
  const uint64_t start_, size_;
  uint64_t position_ = 0;
  std::vector<Patch> patches_;
  int pages_ = 0;
  std::string lostPages_;
  std::unique_ptr<TStream> owned_;
};

}  // namespace rasterkit::detail
