#pragma once

#include <string>

namespace rasterkit::tool {

/// From now on the first Ctrl-C (or another polite request to end) only asks the work to stop, so
/// that no half-written file stays behind; a second one ends the process at once. A file-size limit
/// of the shell becomes an ordinary write error.
void CatchInterruption();

/// Throws Failure(exitInterrupted) once the user has asked to stop. Called between the steps of a
/// picture and right before an output gets its name.
void StopIfInterrupted();

bool IsInterrupted();

/// While one lives, a file is read. A pipe may keep its reader waiting for ever, so that an
/// interruption then ends the process at once, unless an output is being written.
class InterruptibleInput {
 public:
  explicit InterruptibleInput(const std::string& file);
  ~InterruptibleInput();
  InterruptibleInput(const InterruptibleInput&) = delete;
  InterruptibleInput& operator=(const InterruptibleInput&) = delete;

 private:
  const bool mayWait_;
};

/// While one lives, an output is written, which an interruption must not tear.
class WholeOutput {
 public:
  WholeOutput();
  ~WholeOutput();
  WholeOutput(const WholeOutput&) = delete;
  WholeOutput& operator=(const WholeOutput&) = delete;
};

}  // namespace rasterkit::tool
