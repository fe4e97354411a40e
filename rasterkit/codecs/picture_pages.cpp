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

}  // namespace

PageView::PageView(TStream& file, PictureType type, int page) : file_(file) {
  if (page == 1) return;
  if (type != PictureType::tiff) ThrowNoPage(page, 1);
  document_ = std::make_unique<TiffDocumentReader>(file);
  if (page < 1 || page > document_->Pages()) ThrowNoPage(page, document_->Pages());
  page_ = document_->PageStream(page);
}

PictureHeader ReadPageHeader(TStream& file, PictureType type, int page) {
  const PageView view(file, type, page);
  return ReadPictureHeader(view.Stream(), type);
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
