#pragma once

#include <memory>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/picture_header.h>
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
  std::unique_ptr<TStream> page_;
};

/// Reads the header of a page; `pages` is the number of those of the whole file. Throws as
/// ReadPictureHeader does; RangeError if there is no such page.
RASTERKIT_EXPORT PictureHeader ReadPageHeader(TStream& file, PictureType type, int page);

}  // namespace rasterkit
