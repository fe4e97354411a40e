#pragma once

#include <QImage>
#include <QPdfDocument>
#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include <rasterkit/graphics/pdf_messages.h>
#include <rasterkit/qt/pdf/pdf_engine.h>
#include <rasterkit/runtime/worker/worker_answers.h>

namespace rasterkit {

/// Answers the requests for one PDF file in a worker process.
class PdfAnswers : public detail::WorkerAnswers {
 public:
  void Prepare() override;
  detail::WorkerMessage Answer(detail::WorkerMessage request) override;
  /// Some damaged files send the engine into an endless loop while it reads; see PdfThread.
  std::optional<detail::WorkerError> Stuck() override;

 private:
  detail::WorkerMessage Open(detail::WorkerMessage& request);
  detail::WorkerMessage Draw(const detail::PdfDraw& draw);
  detail::WorkerMessage TakeRows(const detail::PdfRows& rows);

  /// Keeps what the engine shares between documents.
  std::unique_ptr<QPdfDocument> keeper_;
  std::unique_ptr<PdfEngine> engine_;
  /// The page whose rows are being fetched; the rows before `taken_` are freed.
  QImage page_;
  int taken_ = 0;
  /// Kept from request to request: fresh memory costs more than the rows.
  std::vector<uint8_t> rows_;

  /// Reading ends soon; drawing may take any time.
  std::atomic<bool> isReading_ = false;
  int64_t lastReads_ = 0;
  double lastSeconds_ = 0;
};

}  // namespace rasterkit

/// For the worker program, which opens librasterkit-pdf at run time. The object lives as long as
/// the process.
extern "C" RASTERKIT_EXPORT rasterkit::detail::WorkerAnswers* RasterkitPdfAnswers();
