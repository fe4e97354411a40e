#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_pages.h>

/// TIFF files of several pages: read page by page, written from copied and new pages.
namespace rasterkit {

/// Number of pages: directories of the chain that are neither smaller copies nor masks. Throws
/// FormatError if the first directory cannot be read.
RASTERKIT_EXPORT int CountTiffPages(TStream& stream);

/// The file as one whose first page is page `page`, counted from 1, so that every reader of this
/// room reads that page with its smaller copies and masks. `stream` must outlive the result. Throws
/// RangeError if there is no such page.
RASTERKIT_EXPORT std::unique_ptr<TStream> TiffPageStream(TStream& stream, int page);

/// Upper bound of the bytes that CopyPage writes for a page.
RASTERKIT_EXPORT uint64_t TiffPageBytes(TStream& stream, int page);

/// Writes a file of several pages, one after another, at the stream's position; the stream must be
/// seekable. The file is complete after `Finish`.
class RASTERKIT_EXPORT TiffDocumentWriter {
 public:
  TiffDocumentWriter(TStream& target, bool isBigTiff, bool isBigEndian);
  ~TiffDocumentWriter();
  TiffDocumentWriter(const TiffDocumentWriter&) = delete;
  TiffDocumentWriter& operator=(const TiffDocumentWriter&) = delete;

  /// True if the encoded pixels of a source in that order of bytes can be copied into this file:
  /// numbers of more than one byte are stored in the order of the file.
  bool CanCopyPage(TStream& source, int page) const;

  /// Copies a page with its smaller copies and masks: encoded strips and tiles byte for byte, every
  /// tag, and the directories that tags lead to (330, 400, 34665, 34853, 40965). Throws FormatError
  /// if the page is damaged so that its bytes cannot be found.
  WrittenPicture CopyPage(TStream& source, int page);
  /// The same with other metadata and another position.
  WrittenPicture CopyPage(TStream& source, int page, const PictureWriting& writing);
  /// Writes a new page, then its smaller copies and masks, as WriteTiff does. The order of bytes is
  /// that of the file.
  WrittenPicture AddPage(const Pixels& pixels, const PictureWriting& writing,
                         std::span<const TiffExtraPage> extraPages = {});
  void Finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit
