#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include <jerror.h>

#include <rasterkit/codecs/jpeg/jpeg_errors.h>

namespace rasterkit::detail {

/// A libjpeg encoder that writes to a growing block of memory; the destructor destroys it.
class JpegWriter {
 public:
  explicit JpegWriter(size_t expectedBytes) : output_(std::max(expectedBytes, kSmallestBuffer)) {
    codec_.err = errors_.Install();
    codec_.client_data = &errors_;
    target_.base.init_destination = [](j_compress_ptr) {};
    target_.base.empty_output_buffer = OnFull;
    target_.base.term_destination = [](j_compress_ptr) {};
    target_.base.next_output_byte = output_.data();
    target_.base.free_in_buffer = output_.size();
    target_.writer = this;
    Run([this] {
      jpeg_create_compress(&codec_);
      codec_.dest = &target_.base;
    });
  }
  ~JpegWriter() { jpeg_destroy_compress(&codec_); }
  JpegWriter(const JpegWriter&) = delete;
  JpegWriter& operator=(const JpegWriter&) = delete;

  jpeg_compress_struct& Codec() { return codec_; }

  template <class Body>
  void Run(const Body& body) {
    if (!RunJpeg(errors_, body)) {
      jpeg_destroy_compress(&codec_);
      errors_.Throw();
    }
  }

  /// Makes the library fail when the time of the call is over, also in passes without rows.
  void WatchTime() {
    progress_.base.progress_monitor = OnProgress;
    progress_.errors = &errors_;
    codec_.progress = &progress_.base;
  }

  std::vector<uint8_t> TakeBytes() {
    output_.resize(output_.size() - target_.base.free_in_buffer);
    return std::move(output_);
  }

 private:
  struct Target {
    jpeg_destination_mgr base{};
    JpegWriter* writer = nullptr;
  };

  struct Progress {
    jpeg_progress_mgr base{};
    JpegErrors* errors = nullptr;
  };

  static void OnProgress(j_common_ptr codec) {
    reinterpret_cast<Progress*>(codec->progress)->errors->CheckTime();
  }

  static boolean OnFull(j_compress_ptr codec) {
    auto* target = reinterpret_cast<Target*>(codec->dest);
    if (!target->writer->Grow()) ERREXIT1(codec, JERR_OUT_OF_MEMORY, 0);
    return TRUE;
  }

  /// Doubles the full buffer. No exception may pass through the library.
  bool Grow() noexcept {
    const size_t used = output_.size();
    try {
      output_.resize(used * 2);
    } catch (...) {
      return false;
    }
    target_.base.next_output_byte = output_.data() + used;
    target_.base.free_in_buffer = used;
    return true;
  }

  static constexpr size_t kSmallestBuffer = 1 << 16;

  std::vector<uint8_t> output_;
  JpegErrors errors_;
  Target target_;
  Progress progress_;
  jpeg_compress_struct codec_{};
};

}  // namespace rasterkit::detail
