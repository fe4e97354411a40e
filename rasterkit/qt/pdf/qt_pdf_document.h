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

/// Pages drawn by Qt PDF, on a thread of their own: the caller's window stays alive, and a page
/// that nobody wants any more is left to itself.
///
/// Why no bands on the calling thread: for a band the engine takes the page's size in whole points,
/// and letters at the band's border come out differently even where that does not matter, so that
/// bands do not add up to the page.
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
  /// False when the question is answered with giving up. Throws when there is no point in waiting.
  bool GoesOn(const PdfKeepGoing& keepGoing) const;
  void RequireFreeEngine() const;
  void RequirePage(int index) const;
  /// Nothing when `keepGoing` gave up.
  std::optional<PdfPageSize> KnownPageSize(int index, const PdfKeepGoing& keepGoing) const;

  mutable PdfThread thread_;
  mutable bool isWaiting_ = false;
  std::string fileName_;
  int pageCount_ = 0;
  mutable std::map<int, PdfPageSize> pageSizes_;
};

}  // namespace rasterkit
