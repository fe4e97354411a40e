#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/metadata/loss.h>

#include "tool/command/commit_queue.h"
#include "tool/command/output_options.h"
#include "tool/reports/point_report.h"

namespace rasterkit::tool {

struct Job {
  std::string input;
  std::string output;
  /// Page of a PDF or TIFF file, counted from 1; 0 for a whole picture.
  int page = 0;
  SaveRules saving = {};
  /// The type of an output on stdout; nothing keeps that of the input.
  std::optional<PictureType> type = std::nullopt;
};

/// Facts about a finished picture.
struct JobResult {
  std::string type;
  int width = 0, height = 0, bits = 0;
  /// "copied" or "moved" for compressed pixels of the input, "encoded" for others; empty if not
  /// known.
  std::string pixels;
  /// What the input contains and the output does not, and why.
  std::vector<Loss> losses;
  /// The same without a reason, by name: "exif", "mpf" and so on.
  std::vector<std::string> notCarriedOver;
  /// Problems that did not stop the work, and what was done beside what was asked.
  std::vector<std::string> warnings, notes;
  /// Notes of the library: how the file is built, and what was done on the way.
  std::vector<std::string> details;
  /// What the output keeps, where its position comes from, and what is done with files beside it.
  std::vector<std::string> kept, sources, sideFiles;
  /// Backups of replaced files; in a dry run those that would be made.
  std::vector<std::string> backups;
  /// The points of --point, if they placed the picture.
  std::optional<PlacedByPoints> placedBy;
  /// Bytes of the output, and memory and scratch file for making it; bounds in a dry run. 0 if not
  /// known.
  uint64_t bytes = 0, memory = 0, scratch = 0;
  /// How many of the warnings in the report of a pending picture stand in `warnings` already.
  size_t reportWarnings = 0;
  /// The output, finished and without its name, which RunJobs gives it. Empty in a dry run.
  FinishedOutput output;
};

/// Assigns an output to each input. Throws Failure(exitWrongUsage) if there is no output, if its
/// extension cannot be written, if two inputs have the same output, or if "-" makes no sense.
/// `onlyExtension` (".ico") is the required extension for a verb that does not write pictures.
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
