#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/codecs/tiff/tiff_document.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

constexpr int kMostNumbered = 0xFFFF;

[[noreturn]] void ThrowNoPage(int page, int count) {
  throw RangeError(fmt::format("there is no page {}: the file has {} page{}", page, count,
                               count == 1 ? "" : "s"));
}

/// The reader of a page takes it for the first one.
std::string OfPage(std::string reason, int page) {
  constexpr std::string_view kFirst = "the first directory";
  const size_t at = reason.find(kFirst);
  if (at == std::string::npos) return reason;
  return reason.replace(at, kFirst.size(), fmt::format("the directory of page {}", page));
}

}  // namespace

PageView::PageView(TStream& file, PictureType type, int page) : file_(file) {
  if (page == 1) return;
  if (type != PictureType::tiff) ThrowNoPage(page, 1);
  document_ = std::make_unique<TiffDocumentReader>(file);
  if (page < 1 || page > document_->Pages()) ThrowNoPage(page, document_->Pages());
  page_ = document_->PageStream(page);
}

namespace {

PictureHeader HeaderOf(TStream& view, PictureType type, int page) {
  try {
    return ReadPictureHeader(view, type);
  } catch (const FormatError& error) {
    if (page == 1) throw;
    throw FormatError(OfPage(error.Reason(), page), error.File());
  }
}

/// A page together with the stream of its file.
class PageOfFile : public TStream {
 public:
  PageOfFile(std::unique_ptr<TStream> file, std::unique_ptr<TStream> page)
      : file_(std::move(file)), page_(std::move(page)) {}

  size_t Read(std::span<uint8_t> target) override { return page_->Read(target); }
  void Write(std::span<const uint8_t> source) override { page_->Write(source); }
  uint64_t Position() const override { return page_->Position(); }
  void SetPosition(uint64_t position) override { page_->SetPosition(position); }
  uint64_t Size() const override { return page_->Size(); }

 private:
  const std::unique_ptr<TStream> file_, page_;
};

}  // namespace

struct SharedPages::State {
  explicit State(OpenFile how) : open(std::move(how)) {}

  /// A page of the stream, which must outlive it.
  std::unique_ptr<TStream> PageOf(TStream& other, PictureType type, int page) {
    if (type != PictureType::tiff) ThrowNoPage(page, 1);
    const std::lock_guard lock(mutex);
    if (!reader) {
      file = open();
      reader = std::make_unique<TiffDocumentReader>(*file);
    }
    if (page < 1 || page > reader->Pages()) ThrowNoPage(page, reader->Pages());
    return reader->PageStream(page, other);
  }

  const OpenFile open;
  std::mutex mutex;
  std::unique_ptr<TStream> file;
  std::unique_ptr<TiffDocumentReader> reader;
};

SharedPages::SharedPages(OpenFile open) : state_(std::make_unique<State>(std::move(open))) {}
SharedPages::~SharedPages() = default;

PictureHeader SharedPages::Header(PictureType type, int page) {
  const std::unique_ptr<TStream> file = state_->open();
  if (page == 1) return ReadPictureHeader(*file, type);
  const std::unique_ptr<TStream> view = state_->PageOf(*file, type, page);
  return HeaderOf(*view, type, page);
}

std::unique_ptr<TStream> SharedPages::View(PictureType type, int page) {
  std::unique_ptr<TStream> file = state_->open();
  if (page == 1) return file;
  std::unique_ptr<TStream> view = state_->PageOf(*file, type, page);
  return std::make_unique<PageOfFile>(std::move(file), std::move(view));
}

PictureHeader ReadPageHeader(TStream& file, PictureType type, int page) {
  const PageView view(file, type, page);
  return HeaderOf(view.Stream(), type, page);
}

void NumberMovedPage(const TiffDocumentReader& source, const MovedPage& moved,
                     TiffDocumentWriter& writer) {
  const std::optional<TiffPageNumber> old = source.PageNumber(moved.page);
  if (!old || moved.newPage > kMostNumbered || moved.count > kMostNumbered) return;
  const bool isInPlace = moved.page == moved.newPage && moved.count == source.Pages();
  const auto total = static_cast<uint16_t>(old->total == 0 ? 0 : moved.count);
  writer.NumberNextPage(
      isInPlace ? *old : TiffPageNumber{static_cast<uint16_t>(moved.newPage - 1), total});
}

}  // namespace rasterkit
