#include "tool/pages/draw_pages.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <mutex>
#include <new>
#include <thread>

#include <fmt/core.h>

#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"
#include "tool/command/output_file.h"
#include "tool/command/output_names.h"
#include "tool/command/output_type.h"
#include "tool/command/printable.h"
#include "tool/pages/page_list.h"
#include "tool/pages/pdf_file.h"

namespace rasterkit::tool {
namespace {

/// The library turns clockwise, the tool counter-clockwise.
PdfRotation RotationOf(int degrees) {
  switch ((degrees + 360) % 360) {
    case 90:
      return PdfRotation::clockwise270;
    case 180:
      return PdfRotation::clockwise180;
    case 270:
      return PdfRotation::clockwise90;
    default:
      return PdfRotation::none;
  }
}

/// Open files that wait for their next page; a document draws one page at a time.
class OpenedFiles {
 public:
  std::unique_ptr<PdfDocument> Take(const std::string& file, const std::string& password) {
    {
      const std::lock_guard lock(mutex_);
      auto& idle = idle_[file];
      if (!idle.empty()) {
        auto document = std::move(idle.back());
        idle.pop_back();
        return document;
      }
    }
    return OpenPdf(file, password);
  }

  void Return(const std::string& file, std::unique_ptr<PdfDocument> document) {
    const std::lock_guard lock(mutex_);
    idle_[file].push_back(std::move(document));
  }

  /// Closes a file of which no more pages are needed.
  void Close(const std::string& file) {
    const std::lock_guard lock(mutex_);
    idle_.erase(file);
  }

 private:
  std::mutex mutex_;
  std::map<std::string, std::vector<std::unique_ptr<PdfDocument>>> idle_;
};

class PageDrawer {
 public:
  explicit PageDrawer(const PdfOptions& options)
      : options_(options), rotation_(RotationOf(options.rotate)) {}

  int Run() {
    const std::vector<Job> jobs = Plan();
    return RunJobs(options_.output, jobs, [this, &jobs](const Job& job) {
      JobResult result = Draw(job);
      if (&job == &jobs.back() || (&job)[1].input != job.input) files_.Close(job.input);
      return result;
    });
  }

 private:
  std::vector<Job> Plan() {
    std::vector<Job> jobs;
    if (options_.output.outDir.empty()) {
      jobs.push_back(PlanJobs(options_.output).front());
      if (!options_.pages.empty() && !PageList::Parse(options_.pages)->IsOnePage()) {
        throw Failure(exitWrongUsage, "several pages require --out-dir DIR");
      }
      jobs[0].page = options_.pages.empty() ? 1 : PageList::Parse(options_.pages)->Of(1).back();
      SayWhatIsComing(jobs[0].input, {jobs[0].page});
      return jobs;
    }
    for (const std::string& input : options_.output.files) PlanFile(input, jobs);
    CheckOutputs(jobs);
    return jobs;
  }

  /// A file that cannot be read gets one job, which reports the error in order.
  void PlanFile(const std::string& input, std::vector<Job>& jobs) {
    int count = 1;
    std::vector<int> pages = {1};
    try {
      auto document = files_.Take(input, options_.password);
      count = document->PageCount();
      pages = PageList::Parse(options_.pages.empty() ? "1-" : options_.pages)->Of(count);
      files_.Return(input, std::move(document));
      SayWhatIsComing(input, pages);
    } catch (const Failure&) {
    }
    for (const int page : pages) {
      const int number = static_cast<int>(jobs.size()) + 1;
      jobs.push_back(
          {input,
           NameInFolder(options_.output, {input, UsualName(input, page, count), page, number}),
           page, options_.output.Saving()});
    }
  }

  /// Returns plan-07.png for plan.pdf: the page number has as many digits as the number of pages.
  std::string UsualName(const std::string& input, int page, int count) const {
    const std::string& type = options_.output.type;
    const std::string extension = type.empty() ? ".png" : (type.starts_with('.') ? "" : ".") + type;
    const std::string base = ChangeFileExt(ExtractFileName(input), "");
    return fmt::format("{}-{:0{}}{}", base, page, std::to_string(count).size(), extension);
  }

  /// Prints the pixels and memory of the page, or of the largest of several.
  void SayWhatIsComing(const std::string& input, const std::vector<int>& pages) {
    try {
      auto document = files_.Take(input, options_.password);
      PdfPixels largest{0, 0};
      for (const int page : pages) {
        if (page > document->PageCount()) continue;
        const PdfPixels pixels =
            PdfPagePixels(SizeOfPage(*document, input, page), options_.dpi / 100, rotation_);
        if (!(pixels.Bytes() <= largest.Bytes())) largest = pixels;
      }
      const int count = document->PageCount();
      files_.Return(input, std::move(document));
      if (largest.width < 1) return;
      const std::string what =
          pages.size() == 1 ? fmt::format("page {} of {}", pages[0], count)
                            : fmt::format("{} pages of {}, the largest", pages.size(), count);
      PrintMessage(fmt::format("{}: {}: {:.0f} x {:.0f} pixels at {:g} dpi, {:.0f} MiB of memory",
                               input, what, largest.width, largest.height, options_.dpi,
                               std::ceil(largest.Bytes() / 1048576)));
    } catch (const Failure&) {
      // The job reports the error.
    }
  }

  JobResult Draw(const Job& job) {
    auto document = files_.Take(job.input, options_.password);
    TBitmap bitmap = DrawPage(*document, job);
    files_.Return(job.input, std::move(document));
    Recolor(bitmap);
    JobResult result;
    result.output.file =
        WriteOutput(job.output, job.saving, [&](TStream& stream) { Encode(bitmap, job, stream); });
    result.type = PictureTypeName(WritableType(job.output));
    result.width = bitmap.Width();
    result.height = bitmap.Height();
    result.bits = bitmap.StoredBits();
    return result;
  }

  /// Straight from the drawn rows: a large page has no room for a second one.
  void Encode(const TBitmap& bitmap, const Job& job, TStream& stream) const {
    constexpr int kMostEncoders = 64, kUsualQuality = 90;
    const int processors = static_cast<int>(std::max(std::thread::hardware_concurrency(), 1u));
    const int threads = options_.picture.threads > 0 ? options_.picture.threads : processors;
    EncodeOptions encoding;
    encoding.quality = options_.picture.quality.value_or(kUsualQuality);
    encoding.tiff.compression = options_.picture.compression.value_or(TiffCompression::standard);
    encoding.tiff.threads = std::min(threads, kMostEncoders);
    FindCodec(WritableType(job.output))->encode(bitmap.Content(), stream, encoding);
  }

  TBitmap DrawPage(PdfDocument& document, const Job& job) const {
    if (job.page > document.PageCount()) {
      throw Failure(exitOutputNotWritten, fmt::format("{}: there is no page {}, the file has {}",
                                                      job.input, job.page, document.PageCount()));
    }
    const auto where = [&](const std::string& reason) {
      return fmt::format("{}: page {}: {}", job.input, job.page, reason);
    };
    TBitmap bitmap;
    try {
      const InterruptibleWait drawing;
      document.ExportPage(job.page - 1, options_.dpi / 100, rotation_, bitmap);
    } catch (const LimitError& error) {
      throw Failure(exitOutputNotWritten, where(ReasonWithOption(error)));
    } catch (const Error& error) {
      throw Failure(exitInputUnreadable, where(ReasonWithOption(error)));
    } catch (const std::bad_alloc&) {
      throw Failure(exitOutputNotWritten, where("out of memory; a lower --dpi needs less"));
    }
    return bitmap;
  }

  void Recolor(TBitmap& bitmap) const {
    if (options_.colors == PageColors::gray) BitmapToGray(&bitmap, false);
    if (options_.colors == PageColors::mono) {
      ColorBmpTo1Bit(&bitmap, options_.threshold, 0, 0, 0, 255, 255, 255);
    }
  }

  const PdfOptions& options_;
  const PdfRotation rotation_;
  OpenedFiles files_;
};

}  // namespace

int DrawPages(const PdfOptions& options) {
  return PageDrawer(options).Run();
}

}  // namespace rasterkit::tool
