#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <span>

#include <rasterkit/codecs/jpeg/jpeg_errors.h>

namespace rasterkit::detail {

/// A libjpeg decoder for bytes in memory; the destructor destroys it.
class JpegReader {
 public:
  explicit JpegReader(std::span<const uint8_t> bytes) : bytes_(bytes) {
    codec_.err = errors_.Install();
    codec_.client_data = &errors_;
    source_.init_source = [](j_decompress_ptr) {};
    source_.fill_input_buffer = OnEnd;
    source_.skip_input_data = OnSkip;
    source_.resync_to_restart = jpeg_resync_to_restart;
    source_.term_source = [](j_decompress_ptr) {};
    source_.next_input_byte = bytes_.data();
    source_.bytes_in_buffer = bytes_.size();
    Run([this] {
      jpeg_create_decompress(&codec_);
      codec_.src = &source_;
      jpeg_read_header(&codec_, TRUE);
    });
  }
  ~JpegReader() { jpeg_destroy_decompress(&codec_); }
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;

  jpeg_decompress_struct& Codec() { return codec_; }
  const jpeg_decompress_struct& Codec() const { return codec_; }
  const JpegErrors& Errors() const { return errors_; }

  /// Calls libjpeg in `body` and throws its error. After an error the reader can only be destroyed.
  template <class Body>
  void Run(const Body& body) {
    if (!RunJpeg(errors_, body)) {
      // The destructor does not run if the constructor throws.
      jpeg_destroy_decompress(&codec_);
      errors_.Throw();
    }
  }

  /// The same, but returns false instead of throwing.
  template <class Body>
  bool Try(const Body& body) {
    return RunJpeg(errors_, body);
  }

  /// Makes the library fail after more than `count` scans, or when the time of the call is over.
  void LimitScans(int count) {
    scanLimit_ = count;
    progress_.base.progress_monitor = OnProgress;
    progress_.reader = this;
    codec_.progress = &progress_.base;
  }

 private:
  struct Progress {
    jpeg_progress_mgr base{};
    JpegReader* reader = nullptr;
  };

  static JpegErrors& ErrorsOf(j_decompress_ptr codec) {
    return *static_cast<JpegErrors*>(codec->client_data);
  }

  /// Called at the end of the bytes: continues as if the end marker stood there.
  static boolean OnEnd(j_decompress_ptr codec) {
    static constexpr uint8_t kEndMarker[] = {0xFF, JPEG_EOI};
    // Arithmetic decoding does not report the end of data; Huffman decoding does (see
    // JpegErrors).
    if (codec->arith_code) ErrorsOf(codec).NoteEnd(codec);
    codec->src->next_input_byte = kEndMarker;
    codec->src->bytes_in_buffer = sizeof kEndMarker;
    return TRUE;
  }

  static void OnSkip(j_decompress_ptr codec, long count) {
    if (count <= 0) return;
    const size_t skipped = std::min(static_cast<size_t>(count), codec->src->bytes_in_buffer);
    codec->src->next_input_byte += skipped;
    codec->src->bytes_in_buffer -= skipped;
  }

  static void OnProgress(j_common_ptr codec) {
    auto* progress = reinterpret_cast<Progress*>(codec->progress);
    JpegReader& reader = *progress->reader;
    if (reader.codec_.input_scan_number > reader.scanLimit_) {
      reader.errors_.FailWithLimit("too many scans for a picture of this size");
    }
    reader.errors_.CheckTime();
  }

  std::span<const uint8_t> bytes_;
  JpegErrors errors_;
  jpeg_source_mgr source_{};
  jpeg_decompress_struct codec_{};
  Progress progress_;
  int scanLimit_ = INT_MAX;
};

}  // namespace rasterkit::detail
