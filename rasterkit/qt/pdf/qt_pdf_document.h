#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/qt/pdf/pdf_thread.h>

namespace rasterkit {

class PdfEngine;

/// Pages drawn by Qt PDF on a separate thread: the caller's window stays responsive, and a canceled
/// page is abandoned.
///
/// A page is not drawn in bands on the calling thread, because the bands would not match the page:
/// for a band the engine rounds the page size to whole points, and it renders letters at the border
/// of a band differently.
class QtPdfDocument : public PdfDocument {
 public:
  void LoadFromFile(const std::string& fileName, const std::string& password) override;
  int PageCount() const override { return pageCount_; }
  PdfPageSize PageSize(int index) const override;
  bool ExportPage(int index, double scale, PdfRotation rotation, TBitmap& bitmap,
                  const PdfKeepGoing& keepGoing) override;

 private:
  template <class Result>
  using Work = std::function<Result(PdfEngine&, const std::atomic<bool>& givenUp)>;

  template <class Result>
  std::optional<Result> Ask(PdfThread::Kind kind, Work<Result> work,
                            const PdfKeepGoing& keepGoing) const;
  /// Returns false if the callback cancels. Throws if waiting is pointless.
  bool GoesOn(const PdfKeepGoing& keepGoing) const;
  void RequireFreeEngine() const;
  void RequirePage(int index) const;
  /// Returns nothing if `keepGoing` canceled.
  std::optional<PdfPageSize> KnownPageSize(int index, const PdfKeepGoing& keepGoing) const;

  mutable PdfThread thread_;
  mutable bool isWaiting_ = false;
  std::string fileName_;
  int pageCount_ = 0;
  mutable std::map<int, PdfPageSize> pageSizes_;
};

}  // namespace rasterkit
