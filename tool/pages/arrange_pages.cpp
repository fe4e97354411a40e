#include "tool/pages/arrange_pages.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <set>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/pictures/document/document.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/batch.h"
#include "tool/command/exit_code.h"
#include "tool/command/output_names.h"
#include "tool/command/output_type.h"
#include "tool/command/standard_input.h"
#include "tool/pages/page_jobs.h"
#include "tool/pages/page_list.h"
#include "tool/pictures/change_picture.h"

namespace rasterkit::tool {
namespace {

constexpr const char* kReverse = "reverse";

class PageArranger {
 public:
  explicit PageArranger(const ArrangeOptions& options) : options_(options) {}

  int Split() {
    std::vector<Job> jobs;
    for (const std::string& input : options_.output.files) PlanFile(input, jobs);
    CheckOutputs(jobs);
    return Run(jobs, [this](const Job& job) {
      const auto opened = opened_.find(job.input);
      // A file that cannot be read has one job, which says so.
      Document one = opened == opened_.end() ? Open(job.input) : opened->second;
      one.Select(std::vector<int>{job.page});
      Strip(one, job);
      return SaveDocument(one, job, options_.picture, options_.output.dryRun);
    });
  }

  int WriteEach() {
    if (options_.order.empty() && options_.removed.empty() && !Strips()) {
      throw Failure(exitWrongUsage, "--in-place requires --order, --remove or --strip");
    }
    const std::vector<Job> jobs = PlanJobs(options_.output);
    RequireTiff(jobs);
    return Run(jobs, [this](const Job& job) { return Save({job.input}, job); });
  }

  int Join() {
    OutputOptions single = options_.output;
    std::vector<std::string> inputs = single.files;
    inputs.pop_back();
    single.files = {inputs.front(), options_.output.files.back()};
    std::vector<Job> jobs = PlanJobs(single);
    if (IsStandardStream(jobs[0].output)) jobs[0].type = PictureType::tiff;
    RequireTiff(jobs);
    return Run(jobs, [&](const Job& job) { return Save(inputs, job); });
  }

 private:
  bool Strips() const { return !options_.picture.edit.IsEmpty(); }

  Document Open(const std::string& file) const {
    PictureOptions reading;
    // Pixels that need not be turned are copied.
    reading.isAsStored = Strips();
    return OpenDocument(file, reading);
  }

  void Strip(Document& document, const Job& job) const {
    if (!Strips()) return;
    DoWork(job, [&] {
      for (int page = 1; page <= document.Pages(); ++page) {
        document.Replace(page, OpenPage(document, page, job.input).Edit(options_.picture.edit));
      }
    });
  }

  static void RequireTiff(const std::vector<Job>& jobs) {
    for (const Job& job : jobs) {
      if (job.type == PictureType::tiff || IsTiff(job.output)) continue;
      throw Failure(exitWrongUsage, fmt::format("{}: only TIFF files have several pages; the name "
                                                "must end in .tif or .tiff, not in '{}'",
                                                job.output, ExtractFileExt(job.output)));
    }
  }

  static bool IsTiff(const std::string& file) { return WritableType(file) == PictureType::tiff; }

  int Run(const std::vector<Job>& jobs, const std::function<JobResult(const Job&)>& work) {
    return RunJobs(options_.output, jobs, work);
  }

  void PlanFile(const std::string& input, std::vector<Job>& jobs) {
    int count = 1;
    std::vector<int> pages = {1};
    try {
      const Document document = Open(input);
      count = document.Pages();
      pages = Chosen(document, input);
      opened_.emplace(input, document);
    } catch (const Failure& failure) {
      if (failure.Code() != exitInputUnreadable) throw;
    }
    for (const int page : pages) {
      const int number = static_cast<int>(jobs.size()) + 1;
      const std::string extension = IsTiff(input) ? ExtractFileExt(input) : ".tif";
      const std::string name = NameOfPage(input, page, count, extension);
      jobs.push_back({input, NameInFolder(options_.output, {input, name, page, number}), page,
                      options_.output.Saving()});
    }
  }

  JobResult Save(const std::vector<std::string>& inputs, const Job& job) const {
    Document document;
    for (const std::string& input : inputs) document.Append(Open(input));
    document.Select(Chosen(document, job.input));
    Strip(document, job);
    return SaveDocument(document, job, options_.picture, options_.output.dryRun);
  }

  static std::vector<int> Existing(const std::string& list, int count, const std::string& file) {
    std::vector<int> pages = PageList::Parse(list).value().Of(count);
    for (const int page : pages) {
      if (page <= count) continue;
      throw Failure(exitOutputNotWritten,
                    fmt::format("{}: there is no page {} among {}", file, page, count));
    }
    return pages;
  }

  /// The pages of the output.
  std::vector<int> Chosen(const Document& document, const std::string& file) const {
    const int count = document.Pages();
    std::vector<int> pages(static_cast<size_t>(count));
    std::iota(pages.begin(), pages.end(), 1);
    if (options_.order == kReverse) {
      std::reverse(pages.begin(), pages.end());
    } else if (!options_.order.empty()) {
      pages = Existing(options_.order, count, file);
    }
    if (!options_.removed.empty()) {
      const std::vector<int> removed = Existing(options_.removed, count, file);
      const std::set<int> gone(removed.begin(), removed.end());
      std::erase_if(pages, [&](int page) { return gone.contains(page); });
    }
    if (pages.empty()) throw Failure(exitWrongUsage, file + ": no page would be left");
    return pages;
  }

  const ArrangeOptions& options_;
  /// Files whose pages are split, opened once. Not changed while jobs run.
  std::map<std::string, Document> opened_;
};

}  // namespace

std::string CheckOrder(const std::string& text) {
  if (text == kReverse || PageList::Parse(text)) return {};
  return CheckPages(text) + ", or reverse";
}

int ArrangePages(const ArrangeOptions& options) {
  PageArranger arranger(options);
  if (options.output.inPlace) return arranger.WriteEach();
  if (!options.output.outDir.empty()) return arranger.Split();
  return arranger.Join();
}

}  // namespace rasterkit::tool
