#pragma once

#include <csetjmp>
#include <string>
#include <type_traits>

#include <png.h>

#include <rasterkit/codecs/rows/codec_report.h>

namespace rasterkit::detail {

/// Keeps the errors of libpng: a fatal error jumps out of the library to `RunPng`, warnings are
/// kept, nothing is printed. Plain data, because the jump runs no destructors; `Throw` makes the
/// exception afterwards.
class PngErrors {
 public:
  /// The two functions that libpng is created with; its error pointer must be a PngErrors.
  [[noreturn]] static void OnFatal(png_structp png, png_const_charp text);
  static void OnWarning(png_structp png, png_const_charp text);

  /// Throws the error of the last failed call: LimitError if out of memory, else FormatError.
  [[noreturn]] void Throw() const;

  /// "PNG: " and the last message of libpng.
  std::string Reason() const { return std::string("PNG: ") + message_; }
  bool MessageIs(const char* text) const;

  /// Appends the kept warnings from number `first` on to the report; returns how many are kept.
  int CopyTo(CodecReport& report, int first = 0) const;

  std::jmp_buf jump;

 private:
  static constexpr int kKeptWarnings = 8;
  static constexpr int kTextBytes = 120;

  char message_[kTextBytes] = "";
  char warnings_[kKeptWarnings][kTextBytes] = {};
  int warningCount_ = 0;
};

/// Runs `body`, which calls libpng; false if the library failed. `body` must hold nothing that
/// needs a destructor.
template <class Body>
bool RunPng(PngErrors& errors, const Body& body) {
  static_assert(std::is_trivially_destructible_v<Body>);
  if (setjmp(errors.jump) != 0) return false;
  body();
  return true;
}

}  // namespace rasterkit::detail
