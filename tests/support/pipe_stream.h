#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::test {

/// A stream as a pipe is one: no size, and no going back.
class PipeStream : public TStream {
 public:
  explicit PipeStream(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}

  size_t Read(std::span<uint8_t> target) override {
    const size_t count = std::min(target.size(), bytes_.size() - consumed_);
    std::copy_n(bytes_.begin() + static_cast<ptrdiff_t>(consumed_), count, target.begin());
    consumed_ += count;
    return count;
  }
  void Write(std::span<const uint8_t>) override {
    throw UnsupportedError("a pipe is written at its other end");
  }
  uint64_t Position() const override { return consumed_; }
  void SetPosition(uint64_t position) override {
    if (position != consumed_) throw FileError("a pipe does not go back");
  }
  uint64_t Size() const override { return 0; }

 private:
  std::vector<uint8_t> bytes_;
  size_t consumed_ = 0;
};

/// A device that never ends.
class EndlessStream : public PipeStream {
 public:
  EndlessStream() : PipeStream({}) {}
  size_t Read(std::span<uint8_t> target) override {
    taken_ += target.size();
    EXPECT_LE(taken_, 100'000u) << "goes on reading";
    if (taken_ > 100'000) return 0;
    std::fill(target.begin(), target.end(), uint8_t{0});
    return target.size();
  }

 private:
  size_t taken_ = 0;
};

}  // namespace rasterkit::test
