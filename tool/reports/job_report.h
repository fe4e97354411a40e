#pragma once

#include <string>

#include "tool/command/batch.h"
#include "tool/command/exit_code.h"

namespace rasterkit::tool {

/// What became of a job.
struct Outcome {
  ExitCode code = exitDone;
  /// Empty if the job did not fail.
  std::string error;
  JobResult result;

  bool IsFailure() const { return !error.empty(); }
};

/// Prints the result of a job: warnings, notes, losses and errors on stderr; with --json a line on
/// stdout, and with --dry-run what would be written.
void PrintOutcome(const OutputOptions& options, const Job& job, const Outcome& outcome);

/// Prints on stderr what the process has used: processor time, page faults, most memory.
void PrintUsage();

}  // namespace rasterkit::tool
