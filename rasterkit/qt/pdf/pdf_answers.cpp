#include <algorithm>
#include <ctime>
#include <utility>

#include <rasterkit/qt/pdf/pdf_answers.h>
#include <rasterkit/qt/pdf/stream_device.h>
#include <rasterkit/raster/white_paper.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/page_release.h>
#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_input.h>
#include <rasterkit/runtime/worker/worker_memory.h>
#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit {
namespace {

/// A readable file delivers a byte much sooner, however large it is.
constexpr double kMostSecondsWithoutByte = 5;

/// Of all threads of this process; only one of them works.
double ProcessSeconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

class Mark {
 public:
  explicit Mark(std::atomic<bool>& flag) : flag_(flag) { flag_ = true; }
  ~Mark() { flag_ = false; }
  Mark(const Mark&) = delete;
  Mark& operator=(const Mark&) = delete;

 private:
  std::atomic<bool>& flag_;
};

size_t RowBytes(int width) {
  return (3 * static_cast<size_t>(width) + 3) / 4 * 4;
}

}  // namespace

void PdfAnswers::Prepare() {
  keeper_ = std::make_unique<QPdfDocument>();
}

std::optional<detail::WorkerError> PdfAnswers::Stuck() {
  const int64_t reads = StreamDevice::Reads();
  const double seconds = ProcessSeconds();
  if (!isReading_ || reads != lastReads_) {
    lastReads_ = reads;
    lastSeconds_ = seconds;
  }
  if (seconds - lastSeconds_ <= kMostSecondsWithoutByte) return std::nullopt;
  return detail::WorkerError{detail::WorkerErrorClass::format, 0,
                             "PDF: the file is damaged: reading it does not end"};
}

detail::WorkerMessage PdfAnswers::Answer(detail::WorkerMessage request) {
  if (request.kind == detail::kPdfOpen) return Open(request);
  if (!engine_) detail::ThrowBadMessage("no file is open");
  if (request.kind == detail::kPdfMeasure) {
    const Mark mark(isReading_);
    return detail::PdfMeasuredMessage(engine_->PageSize(detail::ReadPdfMeasure(request)));
  }
  if (request.kind == detail::kPdfDraw) return Draw(detail::ReadPdfDraw(request));
  if (request.kind == detail::kPdfTakeRows) return TakeRows(detail::ReadPdfTakeRows(request));
  detail::ThrowBadMessage("its kind is unknown");
}

detail::WorkerMessage PdfAnswers::Open(detail::WorkerMessage& request) {
  if (engine_ || request.files.size() != 1) detail::ThrowBadMessage("a second file");
  const Mark mark(isReading_);
  const std::string password = detail::ReadPdfOpen(request);
  const std::shared_ptr<TStream> stream = detail::WorkerInputStream(std::move(request.files[0]));
  auto engine = std::make_unique<PdfEngine>();
  const int pages = engine->Open(stream, password);
  engine_ = std::move(engine);
  return detail::PdfOpenedMessage(pages);
}

detail::WorkerMessage PdfAnswers::Draw(const detail::PdfDraw& draw) {
  page_ = QImage();
  taken_ = 0;
  const PdfPixels pixels = PdfPagePixels(engine_->PageSize(draw.index), draw.scale, draw.rotation);
  // The picture comes on top of what the content of the file may take.
  detail::AllowWorkerMemory(detail::WorkerMemoryBytes(
      DefaultLimits(), static_cast<uint64_t>(std::clamp(pixels.Bytes(), 0.0, 1e15))));
  page_ = engine_->Render(draw.index, draw.scale, draw.rotation);
  // Now it may be changed without a copy.
  page_.detach();
  return detail::PdfDrawnMessage({page_.width(), page_.height()});
}

detail::WorkerMessage PdfAnswers::TakeRows(const detail::PdfRows& rows) {
  if (rows.first != taken_ || rows.count > page_.height() - taken_) {
    detail::ThrowBadMessage("there are no such rows");
  }
  const auto width = static_cast<size_t>(page_.width());
  const size_t stride = RowBytes(page_.width());
  // The padding of a row stays 0.
  rows_.assign(stride * static_cast<size_t>(rows.count), 0);
  for (int i = 0; i < rows.count; ++i) {
    PutOnWhite(page_.constScanLine(rows.first + i), width,
               rows_.data() + static_cast<size_t>(i) * stride);
  }
  detail::WorkerMessage answer = detail::PdfRowsMessage(detail::WorkerMemoryOf(rows_));
  const auto pageStride = static_cast<size_t>(page_.bytesPerLine());
  ReleasePages(page_.bits() + static_cast<size_t>(rows.first) * pageStride,
               static_cast<size_t>(rows.count) * pageStride);
  taken_ += rows.count;
  if (taken_ == page_.height()) page_ = QImage();
  return answer;
}

}  // namespace rasterkit

rasterkit::detail::WorkerAnswers* RasterkitPdfAnswers() {
  static rasterkit::PdfAnswers answers;
  return &answers;
}
