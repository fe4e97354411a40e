#pragma once

#include <optional>
#include <stop_token>
#include <string>

namespace rasterkit::tool {

/// Installs the signal handlers. The first Ctrl-C (or termination request) tells the work to stop,
/// so that no incomplete file is left; a second one removes temporary files and ends the process at
/// once. Exceeding the shell's file size limit becomes an ordinary write error.
void CatchInterruption();

/// Throws Failure(exitInterrupted) if the user requested a stop, and LimitError if the time of the
/// picture is over or its job lacks memory. Called between the steps of a
/// picture and just before an output gets its name.
void StopIfInterrupted();

/// StopIfInterrupted for functions that ask whether to go on: returns true.
bool ContinueUnlessInterrupted();

bool IsInterrupted();

/// A token that is stopped when the user requests a stop, for calls of the library.
std::stop_token InterruptionToken();

/// Prints "interrupted" on stderr, once per process.
void SayInterrupted();

/// Marks a wait without a time limit: for the user, for the writer of a pipe, or for a page that is
/// drawn. During its lifetime an interruption ends the process at once, unless an output is being
/// written.
class InterruptibleWait {
 public:
  InterruptibleWait();
  ~InterruptibleWait();
  InterruptibleWait(const InterruptibleWait&) = delete;
  InterruptibleWait& operator=(const InterruptibleWait&) = delete;
};

/// Marks the reading of a file as a wait if the file is a pipe.
class InterruptibleInput {
 public:
  explicit InterruptibleInput(const std::string& file);

 private:
  std::optional<InterruptibleWait> wait_;
};

/// Marks the writing of an output, which an interruption must not cut short.
class WholeOutput {
 public:
  WholeOutput();
  ~WholeOutput();
  WholeOutput(const WholeOutput&) = delete;
  WholeOutput& operator=(const WholeOutput&) = delete;
};

}  // namespace rasterkit::tool
