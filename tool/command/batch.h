#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <rasterkit/runtime/files/atomic_file.h>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

struct Job {
  std::string input;
  std::string output;
  /// Page of a PDF file, counted from 1; 0 for a whole picture.
  int page = 0;
  SaveRules saving = {};
};

/// Facts about a finished picture.
struct JobResult {
  std::string type;
  int width = 0, height = 0, bits = 0;
  /// What the input contains and the output does not: "exif", "gps", "transparency" and so on.
  std::vector<std::string> notCarriedOver;
  /// Problems that did not stop the work.
  std::vector<std::string> warnings;
  /// The output, finished and without its name, which RunJobs gives it.
  std::unique_ptr<AtomicFile> file;
};

/// Assigns an output to each input. Throws Failure(exitWrongUsage) if there is no output, if its
/// extension cannot be written, or if two inputs have the same output. `onlyExtension` (".ico") is
/// the required extension for a verb that does not write pictures.
std::vector<Job> PlanJobs(const OutputOptions& options, const std::string& onlyExtension = "");

/// Throws Failure(exitWrongUsage) if an output is not a picture or if two outputs have the same
/// name.
void CheckOutputs(const std::vector<Job>& jobs);

/// Runs `work` for each job, several at a time with --jobs. Prints results and errors in the order
/// of the inputs, each after its output is on the disk (unless --no-sync). Returns the exit code:
/// that of the first input that failed; exitInterrupted if an interruption kept an output from
/// being completed.
int RunJobs(const OutputOptions& options, const std::vector<Job>& jobs,
            const std::function<JobResult(const Job&)>& work);

}  // namespace rasterkit::tool
