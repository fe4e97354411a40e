#pragma once

#include <stdexcept>
#include <string>

namespace rasterkit::tool {

/// Exit codes of the process. 0 is returned only if all outputs were written.
enum ExitCode {
  exitDone = 0,
  exitAnswerIsNo = 1,
  exitWrongUsage = 2,
  exitInputUnreadable = 3,
  exitOutputNotWritten = 4,
  /// With --strict: the output was written, but something of the input is lost.
  exitNotCarriedOver = 5,
  exitInterrupted = 130,
};

/// An error with its own exit code.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  ExitCode Code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace rasterkit::tool
