#pragma once

#include <cstdint>
#include <string>

/// A TIFF file of five pages of different kinds, written by libtiff.
namespace rasterkit::test {

/// The pages, counted from 1.
enum MadePage {
  /// 120 x 90, gray, uncompressed strips, resolution 300.
  kPlainPage = 1,
  /// 160 x 96, RGB, Deflate in tiles, a smaller copy in a sub-directory.
  kTiledPage,
  /// 200 x 100, black and white, CCITT G4, 204 x 98 dots per inch, with a mask after it.
  kFaxPage,
  /// 60 x 50, 16-bit numbers, uncompressed, with an EXIF directory.
  kNumberPage,
  /// 96 x 64, JPEG with tables, a private tag.
  kPhotoPage,
  kMadePages = kPhotoPage
};

/// `mode` is "w" with "l" or "b" for the order of bytes, and "8" for BigTIFF.
void WriteMadeDocument(const std::string& file, const std::string& mode);

/// Place of a page among the directories of the chain: the mask stands among them.
inline int ChainIndex(int page) {
  return page <= kFaxPage ? page - 1 : page;
}

/// Bytes of one row of the plain page, which stand nowhere else.
std::string RowOfPlainPage(int y);

}  // namespace rasterkit::test
