#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

struct Job {
  std::string input;
  std::string output;
  /// Of a PDF file, counted from 1; 0 for a whole picture.
  int page = 0;
};

/// What a finished picture is like.
struct JobResult {
  std::string type;
  int width = 0, height = 0, bits = 0;
  /// What the input had and the output has not: "exif", "gps", "transparency" ...
  std::vector<std::string> notCarriedOver;
  /// What a decoder noticed without giving up.
  std::vector<std::string> warnings;
};

/// Which input becomes which output. Throws Failure(exitWrongUsage) for a list that makes no sense:
/// no output, an extension that cannot be written, two inputs with the same output.
/// `onlyExtension` (".ico") is the one that a verb writes when it writes no pictures.
std::vector<Job> PlanJobs(const OutputOptions& options, const std::string& onlyExtension = "");

/// Throws Failure(exitWrongUsage) for outputs that are no pictures, and for two of the same name.
void CheckOutputs(const std::vector<Job>& jobs);

/// Runs `work` for each job, several at a time with --jobs, prints results and errors in the order
/// of the inputs and returns the exit code: that of the first input that failed.
int RunJobs(const OutputOptions& options, const std::vector<Job>& jobs,
            const std::function<JobResult(const Job&)>& work);

}  // namespace rasterkit::tool
