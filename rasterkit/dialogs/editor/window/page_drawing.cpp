#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>
#include <mutex>
#include <stop_token>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/dialogs/editor/window/page_drawing.h>
#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/qt/bitmap_image.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

/// No page that is drawn small may take more.
constexpr uint64_t kMostBytes = uint64_t{384} << 20;
/// Scale 1 of a PDF page is 100 pixels per inch.
constexpr double kPointsPerPixel = 0.72;

/// The image owns its pixels.
QImage Owned(const TBitmap& bitmap) {
  return ImageOfBitmap(bitmap).convertToFormat(QImage::Format_ARGB32_Premultiplied).copy();
}

bool IsPdfFile(const std::string& file) {
  TFileStream stream(file);
  return stream.Size() > 0 && SniffPictureType(stream) == PictureType::pdf;
}

/// Those of the calling thread, where they are not wider.
Limits LimitsOfPages() {
  Limits most = CurrentLimits();
  most.pictureBytes = std::min(most.pictureBytes, kMostBytes);
  return most;
}

class Pages {
 public:
  Pages(std::string file, Isolation isolation)
      : file_(std::move(file)), isolation_(isolation), limits_(LimitsOfPages()) {}

  QImage Draw(int page, int side, const std::atomic<bool>& isCanceled) {
    // A job that was canceled may end after its successor began.
    const std::lock_guard lock(mutex_);
    if (isCanceled) return {};
    if (!isKnown_) {
      isPdf_ = IsPdfFile(file_);
      isKnown_ = true;
    }
    const LimitsScope scope(limits_);
    return isPdf_ ? DrawPdf(page, side, isCanceled) : DrawPicture(page, side, isCanceled);
  }

 private:
  QImage DrawPdf(int page, int side, const std::atomic<bool>& isCanceled) {
    if (!pdf_) {
      pdf_ = CreatePdfDocument();
      pdf_->LoadFromFile(file_);
    }
    const PdfPageSize size = pdf_->PageSize(page - 1);
    const double longest = std::max(size.width, size.height);
    if (!std::isfinite(longest) || longest <= 0) return {};
    TBitmap bitmap;
    const bool isDrawn =
        pdf_->ExportPage(page - 1, side * kPointsPerPixel / longest, PdfRotation::none, bitmap,
                         [&isCanceled] { return !isCanceled; });
    return isDrawn ? Owned(bitmap) : QImage();
  }

  QImage DrawPicture(int page, int side, const std::atomic<bool>& isCanceled) const {
    OpenOptions options;
    options.page = page;
    options.isolation = isolation_;
    options.shrinksOnLoad = isolation_ == Isolation::none;
    Picture picture = Picture::Open(file_, options);
    const double longest = std::max(picture.Width(), picture.Height());
    if (longest > side) {
      const auto scaled = [&](int length) {
        return std::max(1, static_cast<int>(std::lround(length * side / longest)));
      };
      picture.Resize(scaled(picture.Width()), scaled(picture.Height()));
    }
    std::stop_source stop;
    Run run;
    run.threads = 1;
    run.cancel = stop.get_token();
    run.progress = [&](double) {
      if (isCanceled) stop.request_stop();
    };
    return Owned(*picture.Bitmap(run));
  }

  const std::string file_;
  const Isolation isolation_;
  const Limits limits_;
  std::mutex mutex_;
  bool isKnown_ = false, isPdf_ = false;
  std::unique_ptr<PdfDocument> pdf_;
};

}  // namespace

PageDrawing DrawPagesOf(const std::string& file, Isolation isolation) {
  return [pages = std::make_shared<Pages>(file, isolation)](
             int page, int side, const std::atomic<bool>& isCanceled) -> QImage {
    try {
      return pages->Draw(page, side, isCanceled);
    } catch (const std::exception&) {
      // A page that cannot be drawn has no small picture.
      return {};
    }
  };
}

}  // namespace rasterkit
