#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <exception>
#include <span>

#include <rasterkit/codecs/jpeg/jpeg_errors.h>

namespace rasterkit::detail {

/// Gives the bytes of a file piece by piece.
class JpegInput {
 public:
  virtual ~JpegInput() = default;
  /// The bytes `left` of the piece before, which stay in front, and those that follow them; `left`
  /// alone at the end. The piece before is invalid then.
  virtual std::span<const uint8_t> Fill(std::span<const uint8_t> left) = 0;
  /// Leaves out bytes that follow the last piece.
  virtual void Skip(uint64_t count) = 0;
};

/// A libjpeg decoder; the destructor destroys it.
class JpegReader {
 public:
  /// Decodes bytes in memory.
  explicit JpegReader(std::span<const uint8_t> bytes) { ReadHeader(bytes); }
  /// Decodes what `input` gives, which must outlive the reader.
  explicit JpegReader(JpegInput& input) : input_(&input) { ReadHeader({}); }
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

  /// Gets more input if fewer bytes than this are there. The library decodes by another way, which
  /// words damage differently, where its input is about to end.
  void KeepFilled(size_t count) {
    if (input_ == nullptr || source_.base.bytes_in_buffer >= count) return;
    Take(input_->Fill({source_.base.next_input_byte, source_.base.bytes_in_buffer}));
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

  struct Source {
    jpeg_source_mgr base{};
    JpegReader* reader = nullptr;
  };

  static JpegReader& ReaderOf(j_decompress_ptr codec) {
    return *reinterpret_cast<Source*>(codec->src)->reader;
  }

  void Take(std::span<const uint8_t> bytes) {
    source_.base.next_input_byte = bytes.data();
    source_.base.bytes_in_buffer = bytes.size();
  }

  void ReadHeader(std::span<const uint8_t> bytes) {
    codec_.err = errors_.Install();
    codec_.client_data = &errors_;
    source_.base.init_source = [](j_decompress_ptr) {};
    source_.base.fill_input_buffer = OnEmpty;
    source_.base.skip_input_data = OnSkip;
    source_.base.resync_to_restart = jpeg_resync_to_restart;
    source_.base.term_source = [](j_decompress_ptr) {};
    source_.reader = this;
    Take(bytes);
    Run([this] {
      jpeg_create_decompress(&codec_);
      codec_.src = &source_.base;
      jpeg_read_header(&codec_, TRUE);
    });
  }

  /// Called when all bytes are used. At the end of the file, continues as if the end marker stood
  /// there.
  static boolean OnEmpty(j_decompress_ptr codec) {
    JpegReader& reader = ReaderOf(codec);
    if (reader.TakeMore()) return TRUE;
    static constexpr uint8_t kEndMarker[] = {0xFF, JPEG_EOI};
    // Arithmetic decoding does not report the end of data; Huffman decoding does (see
    // JpegErrors).
    if (codec->arith_code) reader.errors_.NoteEnd(codec);
    reader.Take(kEndMarker);
    return TRUE;
  }

  /// False at the end of the file. No exception may pass through the library.
  bool TakeMore() {
    if (input_ == nullptr) return false;
    try {
      Take(input_->Fill({}));
    } catch (...) {
      errors_.Keep(std::current_exception());
    }
    errors_.EndIfKept();
    return source_.base.bytes_in_buffer > 0;
  }

  static void OnSkip(j_decompress_ptr codec, long count) {
    if (count <= 0) return;
    const auto all = static_cast<size_t>(count);
    const size_t skipped = std::min(all, codec->src->bytes_in_buffer);
    codec->src->next_input_byte += skipped;
    codec->src->bytes_in_buffer -= skipped;
    JpegInput* input = ReaderOf(codec).input_;
    if (input != nullptr && skipped < all) input->Skip(all - skipped);
  }

  static void OnProgress(j_common_ptr codec) {
    auto* progress = reinterpret_cast<Progress*>(codec->progress);
    JpegReader& reader = *progress->reader;
    if (reader.codec_.input_scan_number > reader.scanLimit_) {
      reader.errors_.FailWithLimit("too many scans for a picture of this size");
    }
    reader.errors_.CheckTime();
  }

  JpegInput* input_ = nullptr;
  JpegErrors errors_;
  Source source_;
  jpeg_decompress_struct codec_{};
  Progress progress_;
  int scanLimit_ = INT_MAX;
};

}  // namespace rasterkit::detail
