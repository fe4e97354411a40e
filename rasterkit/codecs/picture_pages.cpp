#include <fmt/format.h>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/codecs/tiff/tiff_document.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

void RequirePage(TStream& file, PictureType type, int page) {
  if (page == 1) return;
  const int count = type == PictureType::tiff ? CountTiffPages(file) : 1;
  if (page > 1 && page <= count) return;
  throw RangeError(fmt::format("there is no page {}: the file has {} page{}", page, count,
                               count == 1 ? "" : "s"));
}

}  // namespace

PageView::PageView(TStream& file, PictureType type, int page) : file_(file) {
  RequirePage(file, type, page);
  if (page > 1) page_ = TiffPageStream(file, page);
}

PictureHeader ReadPageHeader(TStream& file, PictureType type, int page) {
  PageView view(file, type, page);
  PictureHeader header = ReadPictureHeader(view.Stream(), type);
  if (page > 1) header.pages = CountTiffPages(file);
  return header;
}

}  // namespace rasterkit
