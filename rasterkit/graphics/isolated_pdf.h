#pragma once

#include <map>
#include <memory>
#include <string>

#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/graphics/pdf_messages.h>
#include <rasterkit/runtime/files/system_file.h>
#include <rasterkit/runtime/worker/worker_session.h>

namespace rasterkit::detail {

/// A PDF file that is read and drawn in a worker process. A page that is canceled or takes too much
/// is gone with its process; the next call starts a fresh one.
class IsolatedPdfDocument : public PdfDocument {
 public:
  /// Throws PdfComponentError if there is no worker program.
  IsolatedPdfDocument();
  ~IsolatedPdfDocument() override;

  void LoadFromFile(const std::string& fileName, const std::string& password) override;
  int PageCount() const override { return pageCount_; }
  PdfPageSize PageSize(int index) const override;
  bool ExportPage(int index, double scale, PdfRotation rotation, TBitmap& bitmap,
                  const PdfKeepGoing& keepGoing) override;

 private:
  template <class Call>
  auto Guarded(Call call) const;
  /// Sends a request to a worker that has opened the file.
  WorkerMessage Ask(WorkerTurn& turn, const WorkerMessage& request, uint16_t answer,
                    size_t files = 0) const;
  int Open(WorkerTurn& turn) const;
  void RequirePage(int index) const;
  PdfPageSize KnownPageSize(int index, const PdfKeepGoing& keepGoing) const;
  Raster Draw(const PdfDraw& draw, const PdfKeepGoing& keepGoing) const;

  mutable bool isWaiting_ = false;
  mutable std::unique_ptr<WorkerSession> session_;
  std::string fileName_;
  std::string password_;
  /// Kept open: each worker gets the file that was opened, whatever happens to its name.
  SystemFile file_;
  int pageCount_ = 0;
  mutable std::map<int, PdfPageSize> pageSizes_;
};

}  // namespace rasterkit::detail
