#include "tool/reports/job_report.h"

#include <cstdio>

#include <fmt/format.h>

#include <rasterkit/runtime/process_usage.h>

#include "tool/command/interruption.h"
#include "tool/command/json.h"
#include "tool/command/printable.h"
#include "tool/reports/loss_report.h"

namespace rasterkit::tool {
namespace {

std::vector<std::string> Joined(std::vector<std::string> texts,
                                const std::vector<std::string>& more) {
  texts.insert(texts.end(), more.begin(), more.end());
  return texts;
}

void PrintJson(const OutputOptions& options, const Job& job, const Outcome& outcome) {
  const bool ok = !outcome.IsFailure();
  const auto ifOk = [ok](const Json& value) { return ok ? value : Json(); };
  const JobResult& result = outcome.result;
  JsonObject line;
  line.Add("schema", 1);
  line.Add("file", job.input);
  line.Add("output", job.output);
  if (job.page > 0) line.Add("page", job.page);
  line.Add("ok", ok);
  line.Add("error", TextOrNull(outcome.error));
  line.Add("type", ifOk(result.type));
  line.Add("width", ifOk(result.width));
  line.Add("height", ifOk(result.height));
  line.Add("bits", ifOk(result.bits));
  line.Add("pixels", ok ? TextOrNull(result.pixels) : Json());
  if (options.dryRun) line.Add("dry_run", true);
  line.Add("not_carried_over", LostNames(result));
  line.Add("losses", LossesJson(result.losses));
  line.Add("kept", result.kept);
  line.Add("side_files", result.sideFiles);
  line.Add("backups", result.backups);
  if (result.placedBy) line.Add("fit", FitJson(*result.placedBy));
  line.Add("bytes", result.bytes > 0 ? Json(result.bytes) : Json());
  line.Add("memory", result.memory > 0 ? Json(result.memory) : Json());
  line.Add("scratch", result.memory > 0 ? Json(result.scratch) : Json());
  line.Add("notes", Joined(result.notes, result.details));
  line.Add("warnings", result.warnings);
  PrintLine(line);
  // A program that reads along sees each picture as soon as it is done.
  std::fflush(stdout);
}

void PrintList(const char* title, const std::vector<std::string>& texts) {
  if (!texts.empty()) fmt::print("  {}{}\n", title, fmt::join(texts, ", "));
}

/// Results of a dry run stand on stdout.
void PrintPlan(const Job& job, const JobResult& result) {
  fmt::print("{}: {}, {} x {} pixels, {} bit{}", OnOneLine(job.output), result.type, result.width,
             result.height, result.bits, result.bits == 1 ? "" : "s");
  if (result.bytes > 0) fmt::print(", at most {} bytes", result.bytes);
  if (result.memory > 0) fmt::print(", at most {} bytes of memory", result.memory);
  if (result.scratch > 0) fmt::print(", at most {} bytes of scratch file", result.scratch);
  fmt::print("\n");
  for (const std::string& sideFile : result.sideFiles) fmt::print("  {}\n", OnOneLine(sideFile));
  for (const std::string& backup : result.backups) fmt::print("  backup: {}\n", OnOneLine(backup));
  PrintList("kept: ", result.kept);
  for (const std::string& detail : result.details) fmt::print("  {}\n", OnOneLine(detail));
  for (const std::string& source : result.sources) fmt::print("  position: {}\n", source);
}

void PrintDetails(const Job& job, const JobResult& result) {
  for (const std::string& detail : result.details) PrintMessage(job.output + ": " + detail);
  for (const std::string& sideFile : result.sideFiles) PrintMessage(job.output + ": " + sideFile);
  if (!result.kept.empty()) {
    PrintMessage(fmt::format("{}: kept: {}", job.output, fmt::join(result.kept, ", ")));
  }
  for (const std::string& source : result.sources) {
    PrintMessage(fmt::format("{}: position: {}", job.input, source));
  }
}

}  // namespace

void PrintUsage() {
  constexpr uint64_t kMebibyte = uint64_t{1} << 20;
  const ProcessUsage usage = UsageOfProcess();
  PrintMessage(fmt::format(
      "used: {:.3f} s of processor time and {:.3f} s in the kernel; page faults: {} minor, {} "
      "major; most memory: {} MiB",
      usage.userSeconds, usage.kernelSeconds, usage.minorFaults, usage.majorFaults,
      (usage.peakBytes + kMebibyte - 1) / kMebibyte));
}

void PrintOutcome(const OutputOptions& options, const Job& job, const Outcome& outcome) {
  const JobResult& result = outcome.result;
  if (!options.quiet) {
    for (const std::string& warning : result.warnings) {
      PrintMessage(fmt::format("{}: warning: {}", job.input, warning));
    }
    for (const std::string& note : result.notes) PrintMessage(job.output + ": " + note);
    if (!options.dryRun && !result.backups.empty()) {
      PrintMessage(fmt::format("{}: backup: {}", job.output, fmt::join(result.backups, ", ")));
    }
  }
  if (outcome.code == exitInterrupted) {
    SayInterrupted();
  } else if (outcome.IsFailure()) {
    PrintMessage(outcome.error);
  }
  const std::string lost = LossText(result);
  if (!lost.empty()) PrintMessage(fmt::format("{}: lost: {}", job.output, lost));
  if (outcome.IsFailure()) {
    // What a failed job would have kept says nothing.
  } else if (options.dryRun && !options.json) {
    PrintPlan(job, result);
  } else if (options.verbose) {
    PrintDetails(job, result);
  }
  if (options.json) PrintJson(options, job, outcome);
}

}  // namespace rasterkit::tool
