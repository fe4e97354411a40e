#include <chrono>
#include <future>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/qt/pdf/pdf_engine.h>
#include <rasterkit/qt/pdf/qt_pdf_document.h>

namespace rasterkit {
namespace {

constexpr std::chrono::milliseconds kBetweenQuestions{10};

/// Sets a flag while it lives.
class Mark {
 public:
  explicit Mark(bool& flag) : flag_(flag) { flag_ = true; }
  ~Mark() { flag_ = false; }
  Mark(const Mark&) = delete;
  Mark& operator=(const Mark&) = delete;

 private:
  bool& flag_;
};

}  // namespace

template <class Result>
std::optional<Result> QtPdfDocument::Ask(PdfThread::Kind kind, Work<Result> work,
                                         const PdfKeepGoing& keepGoing) const {
  if (isWaiting_) throw Error("PDF: the file is being read already", fileName_);
  RequireFreeEngine();
  const Mark mark(isWaiting_);
  // On an early return or exception the thread must not continue for no one.
  struct GivesUp {
    std::shared_ptr<std::atomic<bool>> flag = std::make_shared<std::atomic<bool>>(false);
    ~GivesUp() { *flag = true; }
  } givenUp;
  const auto job = std::make_shared<std::packaged_task<Result(PdfEngine&)>>(
      [work = std::move(work), flag = givenUp.flag](PdfEngine& engine) {
        return work(engine, *flag);
      });
  std::future<Result> result = job->get_future();
  thread_.Post(kind, [job](PdfEngine& engine) { (*job)(engine); });
  while (result.wait_for(kBetweenQuestions) != std::future_status::ready) {
    if (!GoesOn(keepGoing)) return std::nullopt;
  }
  try {
    return result.get();
  } catch (Error& error) {
    error.AttachFile(fileName_);
    throw;
  }
}

bool QtPdfDocument::GoesOn(const PdfKeepGoing& keepGoing) const {
  if (thread_.GoesInCircles()) {
    throw FormatError("PDF: the file is damaged: reading it does not end", fileName_);
  }
  RequireFreeEngine();
  return !keepGoing || keepGoing();
}

void QtPdfDocument::LoadFromFile(const std::string& fileName, const std::string& password) {
  const auto open = [fileName, password](PdfEngine& engine, const std::atomic<bool>&) {
    return engine.Open(fileName, password);
  };
  if (!isWaiting_) {
    fileName_ = fileName;
    pageCount_ = 0;
    pageSizes_.clear();
  }
  pageCount_ = Ask<int>(PdfThread::Kind::reading, open, {}).value();
}

PdfPageSize QtPdfDocument::PageSize(int index) const {
  return KnownPageSize(index, {}).value();
}

bool QtPdfDocument::ExportPage(int index, double scale, PdfRotation rotation, TBitmap& bitmap,
                               const PdfKeepGoing& keepGoing) {
  if (!(scale > 0)) throw RangeError(fmt::format("PDF: {} is not a valid scale", scale), fileName_);
  const std::optional<PdfPageSize> size = KnownPageSize(index, keepGoing);
  if (!size) return false;
  try {
    RequirePdfPage(*size, scale, rotation);
  } catch (Error& error) {
    error.AttachFile(fileName_);
    throw;
  }
  const auto draw = [index, scale, rotation](PdfEngine& engine, const std::atomic<bool>& givenUp) {
    return engine.Draw(index, scale, rotation, givenUp);
  };
  auto drawn = Ask<std::optional<TBitmap>>(PdfThread::Kind::drawing, draw, keepGoing);
  if (!drawn || !*drawn) return false;
  bitmap = std::move(**drawn);
  return true;
}

void QtPdfDocument::RequireFreeEngine() const {
  if (!PdfThread::IsEngineStuck()) return;
  throw Error("PDF: a damaged file blocks the PDF engine; restart the program", fileName_);
}

void QtPdfDocument::RequirePage(int index) const {
  if (index >= 0 && index < pageCount_) return;
  throw RangeError(fmt::format("PDF: there is no page {}, the file has {}", index + 1, pageCount_),
                   fileName_);
}

std::optional<PdfPageSize> QtPdfDocument::KnownPageSize(int index,
                                                        const PdfKeepGoing& keepGoing) const {
  RequirePage(index);
  const auto known = pageSizes_.find(index);
  if (known != pageSizes_.end()) return known->second;
  const auto measure = [index](const PdfEngine& engine, const std::atomic<bool>&) {
    return engine.PageSize(index);
  };
  const std::optional<PdfPageSize> size =
      Ask<PdfPageSize>(PdfThread::Kind::reading, measure, keepGoing);
  if (size) pageSizes_.emplace(index, *size);
  return size;
}

}  // namespace rasterkit
