#pragma once

#include <exception>
#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/worker_message.h>

namespace rasterkit::detail {

/// Class of an error that a worker reports. PdfPasswordError stands above this room.
enum class WorkerErrorClass {
  error,
  file,
  format,
  unsupported,
  limit,
  timeLimit,
  range,
  conversion,
  divisionByZero,
  badAlloc,
  pdfPassword,
  /// The part that reads such files is not installed.
  component,
  /// The memory of the worker is used up, and what read the file cannot go on.
  outOfMemory,
};

struct WorkerError {
  WorkerErrorClass errorClass = WorkerErrorClass::error;
  /// LimitKind of a LimitError.
  int limitKind = 0;
  std::string reason;
};

/// In the worker: the answer for an exception. Invalid UTF-8 in the reason is replaced, and a long
/// one is cut.
RASTERKIT_EXPORT WorkerMessage FailedMessage(const std::exception_ptr& error);
RASTERKIT_EXPORT WorkerMessage FailedMessage(const WorkerError& error);

/// In the host. Throws FormatError for an invalid message.
RASTERKIT_EXPORT WorkerError ReadFailed(const WorkerMessage& message);

/// Throws the error, without a file name.
[[noreturn]] RASTERKIT_EXPORT void ThrowWorkerError(const WorkerError& error);

}  // namespace rasterkit::detail
