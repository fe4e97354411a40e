#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <type_traits>
#include <utility>

#include <jpeglib.h>

#include <rasterkit/codecs/rows/codec_report.h>

namespace rasterkit::detail {

/// Keeps the errors of libjpeg: a fatal error jumps out of the library to `RunJpeg`, warnings are
/// kept, nothing is printed. `Throw` makes the exception afterwards, because the jump runs no
/// destructors.
class JpegErrors {
 public:
  /// Prepares the handler. Its address must not change while the codec object lives.
  jpeg_error_mgr* Install();

  /// Ends the current call into libjpeg; `Throw` then throws a LimitError with this text.
  [[noreturn]] void FailWithLimit(const char* reason);

  /// Calls RequireTime. Ends the current call into libjpeg if it throws; `Throw` then throws the
  /// same.
  void CheckTime();

  /// Keeps an error of the input; EndIfKept then ends the current call into libjpeg, and `Throw`
  /// throws the same.
  void Keep(std::exception_ptr error) { stop_ = std::move(error); }
  void EndIfKept() {
    if (stop_) std::longjmp(jump, 1);
  }

  /// Throws the error of the last failed call: LimitError, UnsupportedError or FormatError.
  [[noreturn]] void Throw() const;

  /// Appends the kept warnings to the report.
  void CopyTo(CodecReport& report) const;

  /// Number of warnings since the header was read, repeated ones too.
  long Warnings() const { return base_.num_warnings; }

  /// True if the picture data are damaged somewhere.
  bool damaged = false;
  /// True if the picture data ended before all rows were decoded.
  bool dataEnded = false;
  /// The row of MCUs in which they ended.
  unsigned endedInRow = 0;
  /// True if that was in the first scan: then later rows hold nothing at all.
  bool endedInFirstScan = false;

  /// Notes the end of the data at the decoder's current row, once.
  void NoteEnd(j_decompress_ptr decoder);

  std::jmp_buf jump;

 private:
  static constexpr int kKeptWarnings = 8;

  static void OnFatal(j_common_ptr codec);
  static void OnMessage(j_common_ptr codec, int level);
  static void OnOutput(j_common_ptr) {}

  jpeg_error_mgr base_{};
  char message_[JMSG_LENGTH_MAX] = "";
  bool limit_ = false;
  std::exception_ptr stop_;
  char warnings_[kKeptWarnings][JMSG_LENGTH_MAX] = {};
  bool isDamage_[kKeptWarnings] = {};
  int warningCount_ = 0;
};

/// Runs `body`, which calls libjpeg; false if the library failed. `body` must hold nothing that
/// needs a destructor.
template <class Body>
bool RunJpeg(JpegErrors& errors, const Body& body) {
  static_assert(std::is_trivially_destructible_v<Body>);
  if (setjmp(errors.jump) != 0) return false;
  body();
  return true;
}

}  // namespace rasterkit::detail
