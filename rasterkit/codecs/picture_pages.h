#pragma once

#include <functional>
#include <memory>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/tiff/tiff_document.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// Pages of picture files, counted from 1: those of a TIFF file, and the first picture of any other
/// file.
namespace rasterkit {

/// A file as one whose first picture is a page of it.
class RASTERKIT_EXPORT PageView {
 public:
  /// The stream must outlive the object. Throws RangeError if there is no such page.
  PageView(TStream& file, PictureType type, int page);

  TStream& Stream() const { return page_ ? *page_ : file_; }

 private:
  TStream& file_;
  std::unique_ptr<TiffDocumentReader> document_;
  std::unique_ptr<TStream> page_;
};

/// The pages of an open file, whose chain is walked once, by the first look at a page after the
/// first one. May be used by several threads at once.
class RASTERKIT_EXPORT SharedPages {
 public:
  /// Opens the file at its beginning: each time a stream of its own, of the same bytes.
  using OpenFile = std::function<std::unique_ptr<TStream>()>;

  explicit SharedPages(OpenFile open);
  ~SharedPages();

  /// See ReadPageHeader.
  PictureHeader Header(PictureType type, int page);
  /// The file as one whose first picture is that page. Throws RangeError if there is no such page.
  std::unique_ptr<TStream> View(PictureType type, int page);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// A page on its way to the file of a writer.
struct MovedPage {
  /// Its old place, and its new one among `count` pages. All are counted from 1.
  int page = 1, newPage = 1, count = 1;
};

/// Brings tag 297 of the page that is copied or added next in line with its new place. A page
/// that has its old place in a file of as many pages keeps its number.
RASTERKIT_EXPORT void NumberMovedPage(const TiffDocumentReader& source, const MovedPage& moved,
                                      TiffDocumentWriter& writer);

/// Reads the header of a page; `pages` is the number of those of the whole file. Throws as
/// ReadPictureHeader does; RangeError if there is no such page.
RASTERKIT_EXPORT PictureHeader ReadPageHeader(TStream& file, PictureType type, int page);

}  // namespace rasterkit
