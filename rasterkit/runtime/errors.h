#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Base of everything Rasterkit throws: what failed, on which file, and why.
///
/// Functions that do not know the file throw with an empty file name. The function that opened the
/// file adds the name with `AttachFile` and rethrows. The first name is kept.
class RASTERKIT_EXPORT Error : public std::runtime_error {
 public:
  /// `reason` is a phrase without a final period, for example "PNG: the header chunk is
  /// missing".
  explicit Error(std::string reason, std::string file = "");

  /// The message: "FILE: REASON", or the reason alone if there is no file name. UTF-8.
  const char* what() const noexcept override { return message_.c_str(); }
  const std::string& Reason() const noexcept { return reason_; }
  const std::string& File() const noexcept { return file_; }

  /// Sets the file name if there is none.
  void AttachFile(const std::string& file);

 private:
  std::string reason_;
  std::string file_;
  std::string message_;
};

/// A file cannot be opened, read, written or renamed.
class RASTERKIT_EXPORT FileError : public Error {
 public:
  using Error::Error;
};

/// The data is not a picture of the expected type, or is damaged beyond use.
class RASTERKIT_EXPORT FormatError : public Error {
 public:
  using Error::Error;
};

/// A valid request that this version does not support (a codec that was not built, a pair of
/// formats without a conversion).
class RASTERKIT_EXPORT UnsupportedError : public Error {
 public:
  using Error::Error;
};

/// The limit that was exceeded (see Limits).
enum class LimitKind {
  /// A fixed limit of Rasterkit or of a file format, or the system's memory.
  fixed,
  pictureBytes,
  processBytes,
  pixels,
  side,
  seconds
};

/// A picture needs more memory, pixels or time than a limit allows, or more memory than the system
/// has.
class RASTERKIT_EXPORT LimitError : public Error {
 public:
  using Error::Error;
  /// `reason` states the limit and the need.
  LimitError(LimitKind kind, std::string reason) : Error(std::move(reason)), kind_(kind) {}

  LimitKind Kind() const noexcept { return kind_; }

 private:
  LimitKind kind_ = LimitKind::fixed;
};

/// The time of a call is over (see Limits::seconds).
class RASTERKIT_EXPORT TimeLimitError : public LimitError {
 public:
  explicit TimeLimitError(std::string reason) : LimitError(LimitKind::seconds, std::move(reason)) {}
};

/// The caller canceled the call.
class RASTERKIT_EXPORT CanceledError : public Error {
 public:
  using Error::Error;
};

/// An index is out of range: a row of a bitmap, an entry of a list.
class RASTERKIT_EXPORT RangeError : public Error {
 public:
  using Error::Error;
};

/// A text is not the expected number or date.
class RASTERKIT_EXPORT ConversionError : public Error {
 public:
  using Error::Error;
};

/// A division by zero in floating-point arithmetic that has no defined result.
class RASTERKIT_EXPORT DivisionByZeroError : public Error {
 public:
  using Error::Error;
};

}  // namespace rasterkit
