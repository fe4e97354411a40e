#pragma once

#include <stdexcept>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Base of everything Rasterkit throws: what failed, on which file, and why.
///
/// Inner functions know the fault but not always the file: they throw with an empty file name, and
/// whoever opened the file adds it with `AttachFile` and rethrows. The first name wins, as the
/// deepest place knows best.
class RASTERKIT_EXPORT Error : public std::runtime_error {
 public:
  /// `reason` is a full sentence part without a final stop, for instance "PNG: the header chunk is
  /// missing".
  explicit Error(std::string reason, std::string file = "");

  /// The message: "FILE: REASON", or the reason alone while no file is known. UTF-8.
  const char* what() const noexcept override { return message_.c_str(); }
  const std::string& Reason() const noexcept { return reason_; }
  const std::string& File() const noexcept { return file_; }

  /// Names the file once; a name that is there already is kept.
  void AttachFile(const std::string& file);

 private:
  std::string reason_;
  std::string file_;
  std::string message_;
};

/// The file system refused: a file cannot be opened, read, written or renamed.
class RASTERKIT_EXPORT FileError : public Error {
 public:
  using Error::Error;
};

/// The bytes are not a picture of the kind they claim to be, or are damaged beyond use.
class RASTERKIT_EXPORT FormatError : public Error {
 public:
  using Error::Error;
};

/// A valid request for something this version does not offer (a codec that is not built, a format
/// pair without a rule).
class RASTERKIT_EXPORT UnsupportedError : public Error {
 public:
  using Error::Error;
};

/// A picture would need more memory than the budget allows, or the system refused the memory.
class RASTERKIT_EXPORT LimitError : public Error {
 public:
  using Error::Error;
};

/// An index lies outside its range: a row of a bitmap, an entry of a list.
class RASTERKIT_EXPORT RangeError : public Error {
 public:
  using Error::Error;
};

/// A text does not hold the number or date that was asked of it.
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
