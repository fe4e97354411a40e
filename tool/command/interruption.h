#pragma once

#include <optional>
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

/// While one lives, the process may wait for ever, for the user, for whoever writes a pipe or for a
/// page that is drawn. An interruption then ends it at once, unless an output is being written.
class InterruptibleWait {
 public:
  InterruptibleWait();
  ~InterruptibleWait();
  InterruptibleWait(const InterruptibleWait&) = delete;
  InterruptibleWait& operator=(const InterruptibleWait&) = delete;
};

/// While one lives, a file is read, and waited for if it is a pipe.
class InterruptibleInput {
 public:
  explicit InterruptibleInput(const std::string& file);

 private:
  std::optional<InterruptibleWait> wait_;
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
