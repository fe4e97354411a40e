#pragma once

#include <stdexcept>
#include <string>

namespace rasterkit::tool {

/// What the process answers. It is never 0 without the output.
enum ExitCode {
  exitDone = 0,
  exitAnswerIsNo = 1,
  exitWrongUsage = 2,
  exitInputUnreadable = 3,
  exitOutputNotWritten = 4,
  /// With --strict: the output is there, but something of the input was not carried over.
  exitNotCarriedOver = 5,
  exitInterrupted = 130,
};

/// An end of the work that has an exit code of its own.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  ExitCode Code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace rasterkit::tool
