#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_pages.h>

/// TIFF files of several pages: read page by page, written from copied and new pages.
///
/// Pages are counted from 1. A page is a directory of the chain that is neither a smaller copy nor
/// a mask (bits 1 and 4 of tag 254); copies and masks belong to the page before them. The first
/// directory is always a page. At most 65,535 directories are found.
namespace rasterkit {

/// Tag 297: the place of a page in a document, counted from 0, and the number of its pages, 0 if it
/// is unknown.
struct TiffPageNumber {
  uint16_t index = 0, total = 0;
  friend bool operator==(const TiffPageNumber&, const TiffPageNumber&) = default;
};

/// A TIFF file whose chain of directories was walked once. Quick for files of thousands of pages.
/// May be used by one thread at a time.
class RASTERKIT_EXPORT TiffDocumentReader {
 public:
  /// The file starts at the position of `stream`, which must outlive this object and keep its
  /// bytes; this object moves its position. A stream without a size is read into memory. Throws
  /// FormatError if the first directory cannot be read.
  explicit TiffDocumentReader(TStream& stream);
  ~TiffDocumentReader();
  TiffDocumentReader(const TiffDocumentReader&) = delete;
  TiffDocumentReader& operator=(const TiffDocumentReader&) = delete;

  int Pages() const;
  bool IsBigTiff() const;
  bool IsBigEndian() const;
  /// The file as one whose only page is `page` with its smaller copies and masks, so that every
  /// reader of this room reads that page. PictureHeader::pages of its header is that of the whole
  /// file. Must not outlive this object. Throws RangeError if there is no such page.
  std::unique_ptr<TStream> PageStream(int page) const;
  /// The same, read through another stream of the same bytes at its beginning, which must outlive
  /// the result. The result does not need this object.
  std::unique_ptr<TStream> PageStream(int page, TStream& stream) const;
  /// Upper bound of the bytes that CopyPage writes for a page; with `writing`, of the page with
  /// that metadata and position.
  uint64_t PageBytes(int page, const PictureWriting* writing = nullptr) const;
  /// Tag 297 of a page; nothing if it is absent.
  std::optional<TiffPageNumber> PageNumber(int page) const;

 private:
  friend class TiffDocumentWriter;
  struct State;
  std::unique_ptr<State> state_;
};

/// Number of pages of the file at the position of the stream, which stays. Throws FormatError if
/// the first directory cannot be read.
RASTERKIT_EXPORT int CountTiffPages(TStream& stream);

/// TiffDocumentReader::PageStream of a file of which one page is read. `stream` must outlive the
/// result; its position stays, also while the result is read.
RASTERKIT_EXPORT std::unique_ptr<TStream> TiffPageStream(TStream& stream, int page);

/// Upper bound of the bytes that CopyPage writes for a page.
RASTERKIT_EXPORT uint64_t TiffPageBytes(TStream& stream, int page);
/// Upper bound of the bytes that AddPage writes.
RASTERKIT_EXPORT uint64_t TiffPageBytes(const Pixels& pixels, const PictureWriting& writing,
                                        std::span<const TiffExtraPage> extraPages = {});

/// Writes a file of several pages, one after another, at the stream's position. The file is
/// complete after `Finish`; before, a target that is not seekable has no bytes at all.
///
/// A file that is no BigTIFF file holds 4 GiB: every function that writes throws LimitError beyond.
/// The sum of TiffPageBytes and 1 KiB tells beforehand.
class RASTERKIT_EXPORT TiffDocumentWriter {
 public:
  TiffDocumentWriter(TStream& target, bool isBigTiff, bool isBigEndian);
  ~TiffDocumentWriter();
  TiffDocumentWriter(const TiffDocumentWriter&) = delete;
  TiffDocumentWriter& operator=(const TiffDocumentWriter&) = delete;

  /// True if the encoded pixels of a source in that order of bytes can be copied into this file:
  /// numbers of more than one byte are stored in the order of the file.
  bool CanCopyPage(const TiffDocumentReader& source, int page) const;
  bool CanCopyPage(TStream& source, int page) const;

  /// Copies a page with its smaller copies and masks: encoded strips and tiles byte for byte, every
  /// tag, and the directories that tags lead to (330, 400, 34665, 34853, 40965 and private ones of
  /// the types for directories). Bytes that pages of one reader share are shared by their copies.
  /// What cannot be copied, as a tag of an unknown type, is a loss in the result. Throws
  /// FormatError if the page is damaged so that its bytes cannot be found, UnsupportedError if
  /// CanCopyPage is false.
  WrittenPicture CopyPage(const TiffDocumentReader& source, int page);
  /// The same with other metadata and another position.
  WrittenPicture CopyPage(const TiffDocumentReader& source, int page,
                          const PictureWriting& writing);
  /// The same for a source of which few pages are copied: its chain is walked by each call.
  WrittenPicture CopyPage(TStream& source, int page);
  WrittenPicture CopyPage(TStream& source, int page, const PictureWriting& writing);
  /// Writes a new page, then its smaller copies and masks, as WriteTiff does. The order of bytes is
  /// that of the file.
  WrittenPicture AddPage(const Pixels& pixels, const PictureWriting& writing,
                         std::span<const TiffExtraPage> extraPages = {});
  /// Sets tag 297 of the page that is copied or added next. Otherwise a copied page keeps its
  /// number, and a new one has none.
  void NumberNextPage(const TiffPageNumber& number);
  /// Completes the file; the stream is then at its end. Throws FormatError if no page was written.
  void Finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit
