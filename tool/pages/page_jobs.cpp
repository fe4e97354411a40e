#include "tool/pages/page_jobs.h"

#include <utility>

#include <fmt/format.h>

#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/exit_code.h"
#include "tool/command/output_names.h"
#include "tool/command/output_type.h"
#include "tool/command/standard_input.h"
#include "tool/pages/page_list.h"
#include "tool/pictures/change_pages.h"

namespace rasterkit::tool {
namespace {

bool TakesOnePage(const Job& job, const PictureOptions& options) {
  const PictureType type = job.type.value_or(WritableType(job.output));
  return (type != PictureType::tiff || options.onlyThisPage) && type != PictureType::unknown;
}

/// The pages that are to be written from a file; none if that shows only later, with its error.
std::vector<int> PagesOf(const Job& job, const PictureOptions& options, int& count) {
  try {
    count = OpenDocument(job.input, options).Pages();
    return ChosenPages(job, options, count);
  } catch (const Failure&) {
    return {};
  }
}

}  // namespace

std::string NameOfPage(const std::string& input, int page, int count,
                       const std::string& extension) {
  const std::string stem = ChangeFileExt(NameOfInput(input), "");
  return fmt::format("{}-{:0{}}{}", stem, page, std::to_string(count).size(), extension);
}

std::vector<Job> JobsOfPages(std::vector<Job> jobs, const OutputOptions& output,
                             const PictureOptions& options) {
  if (output.outDir.empty() || PageList::Parse(options.pages).value().IsOnePage()) return jobs;
  std::vector<Job> all;
  bool isMore = false;
  for (Job& job : jobs) {
    int count = 1;
    std::vector<int> pages;
    if (TakesOnePage(job, options) && !IsStandardStream(job.input))
      pages = PagesOf(job, options, count);
    if (pages.size() < 2) {
      all.push_back(std::move(job));
      continue;
    }
    isMore = true;
    for (const int page : pages) {
      Job one = job;
      one.page = page;
      const int number = static_cast<int>(all.size()) + 1;
      one.output = NameInFolder(
          output, {job.input, NameOfPage(job.input, page, count, ExtractFileExt(job.output)), page,
                   number});
      all.push_back(std::move(one));
    }
  }
  if (isMore) CheckOutputs(all);
  return all;
}

}  // namespace rasterkit::tool
