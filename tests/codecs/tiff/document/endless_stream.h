#pragma once

#include <algorithm>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/codecs/tiff/document/made_document.h"

namespace rasterkit::test {

/// A source of any size whose bytes cost nothing.
class EndlessStream : public TStream {
 public:
  EndlessStream(ByteList head, uint64_t size) : head_(std::move(head)), size_(size) {}
  size_t Read(std::span<uint8_t> target) override {
    const auto count = static_cast<size_t>(std::min<uint64_t>(target.size(), size_ - position_));
    for (size_t i = 0; i < count; i++) {
      target[i] = position_ + i < head_.size() ? head_[static_cast<size_t>(position_) + i] : 0;
    }
    position_ += count;
    reads++;
    return count;
  }
  void Write(std::span<const uint8_t>) override { throw FileError("read only"); }
  uint64_t Position() const override { return position_; }
  void SetPosition(uint64_t position) override { position_ = position; }
  uint64_t Size() const override { return size_; }
  int reads = 0;

 private:
  const ByteList head_;
  const uint64_t size_;
  uint64_t position_ = 0;
};

}  // namespace rasterkit::test
