#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <type_traits>

#include <jpeglib.h>

#include <rasterkit/codecs/rows/codec_report.h>

namespace rasterkit::detail {

/// libjpeg's error handling as values: a fatal error jumps out of the library to `RunJpeg`,
/// warnings are kept, nothing is printed. Plain data, because the jump runs no destructors; `Throw`
/// makes the exception afterwards.
class JpegErrors {
 public:
  /// Prepares the handler; the address must stay the same as long as the codec object lives.
  jpeg_error_mgr* Install();

  /// Ends the current call into libjpeg with a text of our own, which `Throw` turns into a
  /// LimitError.
  [[noreturn]] void FailWithLimit(const char* reason);

  /// Throws what the last failed call left: LimitError, UnsupportedError or FormatError.
  [[noreturn]] void Throw() const;

  /// Appends the kept warnings to the report.
  void CopyTo(CodecReport& report) const;

  /// Set when the picture data are damaged somewhere.
  bool damaged = false;
  /// Set when the picture data ended before all rows were decoded.
  bool dataEnded = false;
  /// The row of MCUs in which they ended.
  unsigned endedInRow = 0;
  /// True when that was in the first scan, so that later rows hold nothing at all.
  bool endedInFirstScan = false;

  /// Notes the end of the data at the decoder's current row, once.
  void NoteEnd(j_decompress_ptr decoder);

  std::jmp_buf jump;

 private:
  static constexpr int keptWarnings = 8;

  static void OnFatal(j_common_ptr codec);
  static void OnMessage(j_common_ptr codec, int level);
  static void OnOutput(j_common_ptr) {}

  jpeg_error_mgr base_{};
  char message_[JMSG_LENGTH_MAX] = "";
  bool limit_ = false;
  char warnings_[keptWarnings][JMSG_LENGTH_MAX] = {};
  int warningCount_ = 0;
};

/// Runs `body`, which calls libjpeg; false when the library gave up. What `body` holds must need no
/// destructor.
template <class Body>
bool RunJpeg(JpegErrors& errors, const Body& body) {
  static_assert(std::is_trivially_destructible_v<Body>);
  if (setjmp(errors.jump) != 0) return false;
  body();
  return true;
}

}  // namespace rasterkit::detail
