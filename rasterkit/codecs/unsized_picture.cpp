#include <algorithm>
#include <utility>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// Gives the bytes that were read already, then those of the pipe.
class ContinuedStream : public TStream {
 public:
  ContinuedStream(std::span<const uint8_t> first, TStream& rest) : first_(first), rest_(rest) {}

  size_t Read(std::span<uint8_t> target) override {
    const size_t count = std::min(target.size(), first_.size());
    std::copy_n(first_.begin(), count, target.begin());
    first_ = first_.subspan(count);
    return count == target.size() ? count : count + rest_.Read(target.subspan(count));
  }
  void Write(std::span<const uint8_t>) override {
    throw UnsupportedError("a pipe that is read cannot be written");
  }
  uint64_t Position() const override { return 0; }
  void SetPosition(uint64_t) override {
    throw UnsupportedError("a pipe cannot be read from another place");
  }
  uint64_t Size() const override { return 0; }

 private:
  std::span<const uint8_t> first_;
  TStream& rest_;
};

}  // namespace

std::vector<uint8_t> ReadUnsizedPicture(TStream& stream) {
  std::vector<uint8_t> first(kSignatureBytes);
  size_t filled = 0;
  while (filled < first.size()) {
    const size_t count = stream.Read(std::span(first).subspan(filled));
    if (count == 0) break;
    filled += count;
  }
  first.resize(filled);
  if (SniffPictureType(first) == PictureType::unknown) return first;
  return ContinuedStream(first, stream).ReadToEnd();
}

}  // namespace rasterkit
