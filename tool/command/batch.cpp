#include "tool/command/batch.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <mutex>
#include <new>
#include <optional>
#include <thread>

#include <fmt/format.h>

#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_job.h>
#include <rasterkit/runtime/text.h>
#include <rasterkit/runtime/worker/worker_slots.h>

#include "tool/command/commit_queue.h"
#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/limit_options.h"
#include "tool/command/output_file.h"
#include "tool/command/output_names.h"
#include "tool/command/output_type.h"
#include "tool/command/progress.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/memory_need.h"
#include "tool/pictures/metafile_output.h"
#include "tool/reports/job_report.h"

namespace rasterkit::tool {
namespace {

std::string UsualName(const OutputOptions& options, const std::string& input) {
  const std::string name = NameOfInput(input);
  if (options.type.empty()) return name;
  const bool hasDot = options.type.starts_with('.');
  const PictureType own = WritableType(name);
  const bool isOfType =
      own != PictureType::unknown && own == WritableType((hasDot ? "x" : "x.") + options.type);
  if (options.keepsExtension && isOfType) return name;
  return ChangeFileExt(name, (hasDot ? "" : ".") + options.type);
}

/// `remedy` is empty or stands behind the message.
void RequireWritableType(const std::string& output, bool takesMetafiles,
                         const std::string& remedy) {
  if (WritableType(output) != PictureType::unknown) return;
  if (takesMetafiles && IsMetafileName(output)) return;
  throw Failure(exitWrongUsage,
                output + ": the name must end in .bmp, .jpg, .jpeg, .png, .tif or .tiff, not in '" +
                    ExtractFileExt(output) + "'" + remedy);
}

void RequireExtension(const std::string& output, const std::string& extension) {
  if (UpperCase(ExtractFileExt(output)) == UpperCase(extension)) return;
  throw Failure(exitWrongUsage, output + ": must end in " + extension + ", not in '" +
                                    ExtractFileExt(output) + "'");
}

void RequireDistinctOutputs(const std::vector<Job>& jobs) {
  std::map<std::filesystem::path, const Job*> seen;
  for (const Job& job : jobs) {
    if (IsStandardStream(job.output)) continue;
    std::error_code ignored;
    const auto path = std::filesystem::weakly_canonical(ToPath(job.output), ignored);
    const auto [place, isNew] = seen.emplace(path, &job);
    if (isNew) continue;
    throw Failure(exitWrongUsage, place->second->input + " and " + job.input +
                                      " would both be written to " + job.output);
  }
}

void RequireFreeOutput(const Job& job) {
  if (IsStandardStream(job.output)) return;
  std::error_code ignored;
  const auto status = std::filesystem::status(ToPath(job.output), ignored);
  if (std::filesystem::is_directory(status)) {
    throw Failure(exitOutputNotWritten, job.output + ": this is a folder");
  }
  if (std::filesystem::is_regular_file(status) && !job.saving.overwrite) {
    throw Failure(exitOutputNotWritten, job.output + ": already exists (--overwrite replaces it)");
  }
}

Outcome RunJob(const OutputOptions& options, const Job& job,
               const std::function<JobResult(const Job&)>& work) {
  const LimitsScope limits;
  Outcome outcome;
  try {
    StopIfInterrupted();
    RequireFreeOutput(job);
    outcome.result = work(job);
    const bool isLossy = !outcome.result.losses.empty() || !outcome.result.notCarriedOver.empty();
    if (options.strict && isLossy) outcome.code = exitNotCarriedOver;
  } catch (const Failure& failure) {
    outcome.code = failure.Code();
    outcome.error = failure.what();
  } catch (const std::bad_alloc&) {
    outcome.code = exitOutputNotWritten;
    outcome.error = job.output + ": out of memory";
  } catch (const std::exception& error) {
    outcome.code = exitOutputNotWritten;
    outcome.error = job.input + ": " + MessageWithOption(error);
  }
  return outcome;
}

/// A pipe gives its bytes only once.
bool CanBeReadAgain(const std::string& file) {
  std::error_code error;
  return !IsStandardStream(file) && std::filesystem::is_regular_file(ToPath(file), error);
}

/// What reading the input needs. Headers of untrusted files are not read in this process.
uint64_t NeedOf(const Job& job) {
  return ReadingIsolation() == Isolation::process ? 0 : MemoryNeed(job.input);
}

/// Runs one of several jobs at a time. It waits for memory that others hold. If all wait for each
/// other, it gives up what it has and is repeated alone.
Outcome RunJobBesideOthers(const OutputOptions& options, const Job& job,
                           const std::function<JobResult(const Job&)>& work) {
  {
    const MemoryJobScope memory(NeedOf(job));
    Outcome outcome = RunJob(options, job, work);
    const bool isRepeated =
        memory.WasRefused() && outcome.IsFailure() && CanBeReadAgain(job.input) && !IsInterrupted();
    if (!isRepeated) return outcome;
  }
  const MemoryJobScope memory(kNoLimit);
  return RunJob(options, job, work);
}

/// Adds what the commit had to warn of.
void AddWarnings(JobResult& result, const FinishedOutput& output, const std::string& name) {
  const std::vector<std::string>& warnings = output.Warnings();
  // The report of a picture has all warnings, those that are known already in front.
  const size_t known = output.picture ? result.reportWarnings : 0;
  for (size_t i = known; i < warnings.size(); ++i) {
    result.warnings.push_back(fmt::format("{}: {}", name, warnings[i]));
  }
}

/// Distributes jobs to threads and prints outcomes in the order of the jobs.
class Batch {
 public:
  Batch(const OutputOptions& options, const std::vector<Job>& jobs,
        const std::function<JobResult(const Job&)>& work)
      : options_(options),
        jobs_(jobs),
        work_(work),
        outcomes_(jobs.size()),
        progress_(options.quiet ? 1 : jobs.size()) {}

  int Run() {
    std::vector<std::thread> helpers;
    const size_t count = std::min(static_cast<size_t>(options_.jobs), jobs_.size());
    for (size_t i = 1; i < count; ++i) helpers.emplace_back([this] { Work(); });
    Work();
    for (std::thread& helper : helpers) helper.join();
    commits_.Drain();
    if (error_) std::rethrow_exception(error_);
    progress_.Clear();
    const bool isComplete = printed_ == jobs_.size() && !wasInterrupted_;
    return IsInterrupted() && !isComplete ? exitInterrupted : code_;
  }

 private:
  void Work() {
    while (!stopped_) {
      const size_t index = next_++;
      if (index >= jobs_.size()) return;
      Outcome outcome = options_.jobs > 1 ? RunJobBesideOthers(options_, jobs_[index], work_)
                                          : RunJob(options_, jobs_[index], work_);
      if (outcome.result.output) {
        Commit(index, std::move(outcome));
      } else {
        Finish(index, std::move(outcome));
      }
    }
  }

  /// Gives the output its name and finishes the job, later if the disk has to be waited for.
  void Commit(size_t index, Outcome outcome) noexcept {
    try {
      TryCommit(index, outcome);
    } catch (const std::exception&) {
      Finish(index, OutOfMemory());
    }
  }

  /// If it throws, it has not finished the job.
  void TryCommit(size_t index, Outcome& outcome) {
    FinishedOutput output = std::move(outcome.result.output);
    if (!jobs_[index].saving.syncs) {
      const std::exception_ptr error = CommitTogether({&output, 1}).front();
      return FinishCommit(index, std::move(outcome), output, error);
    }
    // An interruption during a wait elsewhere must not lose an output that is whole.
    struct Waiting {
      Outcome outcome;
      WholeOutput whole;
    };
    const auto waiting = std::make_shared<Waiting>();
    waiting->outcome = std::move(outcome);
    commits_.Add(std::move(output), [this, index, waiting](const FinishedOutput& committed,
                                                           const std::exception_ptr& error) {
      FinishCommit(index, std::move(waiting->outcome), committed, error);
    });
  }

  void FinishCommit(size_t index, Outcome outcome, const FinishedOutput& output,
                    const std::exception_ptr& error) noexcept {
    try {
      const std::string& name = jobs_[index].output;
      if (error) {
        outcome = {exitOutputNotWritten, OutputError(name, error), {}};
      } else {
        AddWarnings(outcome.result, output, name);
      }
      outcome.result.backups = output.Backups();
    } catch (const std::exception&) {
      outcome = OutOfMemory();
    }
    Finish(index, std::move(outcome));
  }

  /// Needs no memory itself: the text is short.
  static Outcome OutOfMemory() { return {exitOutputNotWritten, "out of memory", {}}; }

  /// Called on several threads, which no error may leave.
  void Finish(size_t index, Outcome outcome) noexcept {
    const std::lock_guard lock(mutex_);
    try {
      Record(index, std::move(outcome));
    } catch (const std::exception&) {
      stopped_ = true;
      if (!error_) error_ = std::current_exception();
    }
  }

  void Record(size_t index, Outcome outcome) {
    const bool isInterrupted = outcome.code == exitInterrupted;
    if (outcome.IsFailure() && (!options_.keepGoing || isInterrupted)) stopped_ = true;
    if (isInterrupted) wasInterrupted_ = true;
    outcomes_[index] = std::move(outcome);
    progress_.Clear();
    for (; printed_ < jobs_.size() && outcomes_[printed_]; ++printed_) {
      const Outcome& finished = *outcomes_[printed_];
      if (code_ == exitDone || (code_ == exitNotCarriedOver && finished.IsFailure())) {
        code_ = finished.code;
      }
      PrintOutcome(options_, jobs_[printed_], finished);
      outcomes_[printed_]->result = {};
    }
    progress_.Advance();
  }

  const OutputOptions& options_;
  const std::vector<Job>& jobs_;
  const std::function<JobResult(const Job&)>& work_;
  std::vector<std::optional<Outcome>> outcomes_;
  std::atomic<size_t> next_ = 0;
  std::atomic<bool> stopped_ = false;
  std::mutex mutex_;
  size_t printed_ = 0;
  bool wasInterrupted_ = false;
  /// The first error while results were printed.
  std::exception_ptr error_;
  ExitCode code_ = exitDone;
  Progress progress_;
  /// Its thread uses the members above.
  CommitQueue commits_;
};

std::vector<Job> PlanFolder(const OutputOptions& options) {
  std::vector<Job> jobs;
  for (const std::string& input : options.files) {
    const int number = static_cast<int>(jobs.size()) + 1;
    jobs.push_back({input, NameInFolder(options, {input, UsualName(options, input), 1, number}), 0,
                    options.Saving()});
  }
  return jobs;
}

/// The type that --format states for stdout.
std::optional<PictureType> StreamType(const OutputOptions& options) {
  if (!IsStandardStream(options.files.back()) || options.type.empty()) return std::nullopt;
  const std::string extension = (options.type.starts_with('.') ? "" : ".") + options.type;
  const PictureType type = WritableType("stdout" + extension);
  if (type != PictureType::unknown) return type;
  throw Failure(exitWrongUsage, "--format of the output '-' must be bmp, jpg, png or tif, not '" +
                                    options.type + "'");
}

std::vector<Job> PlanInPlace(const OutputOptions& options) {
  if (!options.outDir.empty() || !options.type.empty()) {
    throw Failure(exitWrongUsage, "--in-place cannot be used with --out-dir or --format");
  }
  std::vector<Job> jobs;
  for (const std::string& input : options.files) {
    jobs.push_back({input, input, 0, options.Saving()});
  }
  return jobs;
}

std::vector<Job> PlanSingle(const OutputOptions& options) {
  if (!options.type.empty() && !IsStandardStream(options.files.back())) {
    throw Failure(exitWrongUsage,
                  "--format requires --out-dir or the output '-'; the extension of a single output "
                  "gives its type");
  }
  if (options.files.size() != 2) {
    throw Failure(exitWrongUsage,
                  "one input and one output are required; several inputs require --out-dir DIR");
  }
  return {{options.files[0], options.files[1], 0, options.Saving(), StreamType(options)}};
}

/// "-" as an input, at most once, or as the only output.
void RequireSensibleStreams(const OutputOptions& options, const std::vector<Job>& jobs) {
  const auto isInput = [](const Job& job) { return IsStandardStream(job.input); };
  const auto inputs = std::count_if(jobs.begin(), jobs.end(), isInput);
  const bool isOutput = jobs.size() == 1 && IsStandardStream(jobs[0].output);
  if (inputs == 0 && !isOutput) return;
  if (!options.takesStreams) {
    throw Failure(exitWrongUsage, "'" + options.verb +
                                      "' does not take stdin and stdout; './-' is a file of the "
                                      "name '-'");
  }
  if (inputs > 1) throw Failure(exitWrongUsage, "stdin can be read only once");
  if (options.inPlace) throw Failure(exitWrongUsage, "stdin cannot be written in place");
  if (!isOutput || options.dryRun) return;
  if (options.json) {
    throw Failure(exitWrongUsage, "--json writes to stdout and cannot be used with the output '-'");
  }
  RequireNoTerminal();
}

}  // namespace

std::vector<Job> PlanJobs(const OutputOptions& options, const std::string& onlyExtension) {
  std::vector<Job> jobs = options.inPlace          ? PlanInPlace(options)
                          : options.outDir.empty() ? PlanSingle(options)
                                                   : PlanFolder(options);
  RequireSensibleStreams(options, jobs);
  const bool keepsTypes = !options.outDir.empty() && options.type.empty() && options.verb != "exif";
  const char* const remedy = keepsTypes ? " (--format chooses the type)" : "";
  for (const Job& job : jobs) {
    if (IsStandardStream(job.output)) continue;
    if (onlyExtension.empty()) {
      RequireWritableType(job.output, options.takesMetafiles, remedy);
    } else {
      RequireExtension(job.output, onlyExtension);
    }
  }
  RequireDistinctOutputs(jobs);
  return jobs;
}

void CheckOutputs(const std::vector<Job>& jobs) {
  for (const Job& job : jobs) RequireWritableType(job.output, false, {});
  RequireDistinctOutputs(jobs);
}

int RunJobs(const OutputOptions& options, const std::vector<Job>& jobs,
            const std::function<JobResult(const Job&)>& work) {
  if (!options.outDir.empty()) {
    std::error_code error;
    std::filesystem::create_directories(ToPath(options.outDir), error);
    if (error) throw Failure(exitOutputNotWritten, options.outDir + ": " + error.message());
  }
  // Each job has its place: one that holds memory never waits for the worker of another.
  detail::SetMostWorkers(static_cast<size_t>(options.jobs));
  const int code = Batch(options, jobs, work).Run();
  if (options.verbose && !options.dryRun && !options.quiet) PrintUsage();
  return code;
}

}  // namespace rasterkit::tool
