#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/isolated_document.h>
#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/sources/decoded_kind.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A smaller form of a picture, from which it can be read.
struct SmallerForm {
  int width = 0, height = 0;
  /// Pixels of the picture in both directions for which a pixel of a JPEG file stands.
  int denominator = 1;
  /// The smaller copy of a TIFF file; see PictureSource::ExtraPages.
  std::optional<size_t> extraPage;
};

/// Where the pixels of a picture come from, and all that was read when it was opened. Never
/// changes; const calls may be made from several threads at once.
class PictureSource {
 public:
  virtual ~PictureSource() = default;

  PictureType Type() const { return type_; }
  /// Name of the file; empty for bytes and rows in memory.
  const std::string& File() const { return file_; }
  const PictureHeader& Header() const { return header_; }
  /// Page of the file, counted from 1.
  int Page() const { return page_; }
  /// The kind of pixels that ReadPixels gives.
  virtual DecodedKind Kind() const { return DecodedKindOf(type_, header_.layout); }
  const Placement& Position() const { return position_; }
  /// What no picture made from this source can have.
  const Changes& Lost() const { return lost_; }

  /// Reads the pixels as stored. What was read around is added to `report`. Works under the limits
  /// of the calling thread.
  virtual Pixels ReadPixels(int threads, CodecReport& report) const = 0;
  /// The smallest form with at least these sides, if one is to be read in place of the picture.
  virtual std::optional<SmallerForm> SmallestForm(int, int) const { return std::nullopt; }
  /// Begins to read the same pixels row by row. Null if they are read only as a whole. The reader
  /// must not outlive the source. Its Finish throws FileError if the file changed.
  virtual std::unique_ptr<RowReader> OpenRows(int threads) const;
  /// The same for a smaller form. Null if it is read only as a whole: see ReadExtraPage.
  virtual std::unique_ptr<RowReader> OpenSmaller(const SmallerForm& form, int threads) const;
  /// True if OpenRows gives rows that are in memory.
  virtual bool IsInMemory() const { return false; }
  /// Smaller copies and masks of a TIFF file's page; none where they cannot be decoded here.
  const std::vector<TiffExtraPageHeader>& ExtraPages() const { return extraPages_; }
  /// Reads one of them. Throws RangeError for another index.
  virtual Pixels ReadExtraPage(size_t index, int threads, CodecReport& report) const;
  /// True if the compressed pixels can be copied.
  virtual bool CanCopy() const { return Bytes() != nullptr; }
  /// Copies the compressed pixels; see CopyPicture. Throws FileError if the file changed.
  virtual WrittenPicture Copy(const PictureWriting& writing, TStream& target) const;
  /// The bytes of the file from its beginning; of a page after the first one, those of PageView.
  /// Null if there are none. Throws FileError if the file changed.
  virtual std::unique_ptr<TStream> Bytes() const { return nullptr; }

  /// The same open file at another page. Throws RangeError if there is none.
  virtual std::shared_ptr<const PictureSource> OpenPage(int page) const;
  /// The bytes of the whole file with all its pages. Null if there are none, and if a worker reads
  /// the file. Throws FileError if the file changed.
  virtual std::unique_ptr<TStream> WholeFile() const { return nullptr; }
  /// True if a worker process reads the file: pages are copied by WriteDocument.
  virtual bool IsApart() const { return false; }
  /// Puts a file together from pages of this one and new pages, in a worker process.
  virtual IsolatedDocument WriteDocument(const DocumentOrder& order) const;

  /// The same for all pages of an open file.
  virtual const void* FileIdentity() const { return this; }
  virtual uint64_t ByteCount() const { return 0; }
  /// True if the name leads to the open file of this source.
  virtual bool IsNamed(const std::string&) const { return false; }

 protected:
  PictureSource() = default;

  PictureType type_ = PictureType::unknown;
  std::string file_;
  int page_ = 1;
  PictureHeader header_;
  std::vector<TiffExtraPageHeader> extraPages_;
  Placement position_;
  Changes lost_;
};

using SourcePtr = std::shared_ptr<const PictureSource>;

/// Takes over rows. Throws FormatError for 0 x 0 pixels.
SourcePtr SourceOf(std::unique_ptr<TBitmap> rows);
SourcePtr SourceOf(Samples rows);

}  // namespace rasterkit::detail
