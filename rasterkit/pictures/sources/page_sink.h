#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/rows/row_writer.h>
#include <rasterkit/codecs/tiff/tiff_document.h>
#include <rasterkit/pictures/sources/picture_source.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Where a picture goes: to a file of its own, or to a page of a file.
class PictureTarget {
 public:
  virtual ~PictureTarget() = default;

  virtual WrittenPicture Write(PictureType type, const Pixels& pixels,
                               const PictureWriting& writing,
                               std::span<const TiffExtraPage> extraPages) = 0;
  /// Begins to write the same row by row, without extra pages. Null if such pixels go only as a
  /// whole.
  virtual std::unique_ptr<RowWriter> Open(PictureType, const Pixels&, WrittenSize,
                                          const PictureWriting&) {
    return nullptr;
  }
  /// Copies compressed pixels. A page `asStored` also keeps every tag to the byte.
  virtual WrittenPicture Copy(const PictureSource& source, const PictureWriting& writing,
                              bool asStored) = 0;
  /// Grows with the bytes that were written.
  virtual uint64_t Position() const = 0;
};

/// A file of one picture.
class StreamTarget : public PictureTarget {
 public:
  explicit StreamTarget(TStream& stream) : stream_(stream) {}

  WrittenPicture Write(PictureType type, const Pixels& pixels, const PictureWriting& writing,
                       std::span<const TiffExtraPage> extraPages) override;
  std::unique_ptr<RowWriter> Open(PictureType type, const Pixels& like, WrittenSize size,
                                  const PictureWriting& writing) override;
  WrittenPicture Copy(const PictureSource& source, const PictureWriting& writing,
                      bool asStored) override;
  uint64_t Position() const override { return stream_.Position(); }

 private:
  TStream& stream_;
};

/// The TIFF files of sources, whose directories are walked once. Sources must live as long as the
/// object.
class SourceFiles {
 public:
  /// Null for a source whose file is no TIFF file or is read by a worker.
  const TiffDocumentReader* Of(const PictureSource& source);

 private:
  struct File {
    std::unique_ptr<TStream> stream;
    std::unique_ptr<TiffDocumentReader> reader;
  };
  std::map<const void*, File> files_;
};

/// How the numbers of a TIFF file are stored.
struct TiffKind {
  bool isBigTiff = false, isBigEndian = false;
};

/// A place in a file that is written, counted from 1.
struct PagePlace {
  int page = 1, count = 1;
};

/// Pages of a file, by their place among those that were written, that a worker could not copy.
class DamagedPages : public FormatError {
 public:
  explicit DamagedPages(std::vector<DamagedPage> found)
      : FormatError("pages are damaged"), pages(std::move(found)) {}

  std::vector<DamagedPage> pages;
};

/// A TIFF file of several pages, written one after another.
class PageSink : public PictureTarget {
 public:
  /// True if the encoded pixels of a page of the source's file can be copied.
  virtual bool CanCopy(const PictureSource& source, int page) = 0;
  /// The page that is written next comes from this page of the source and gets that place.
  virtual void Place(const PictureSource& source, int page, const PagePlace& place) = 0;
  /// Copies a page of the source's file as it is.
  virtual void CopyAsStored(const PictureSource& source, int page) = 0;
  /// Completes the file. Returns what became of each page: copying by a worker happens only then.
  /// Throws DamagedPages if that fails, before a byte is written to the target.
  virtual std::vector<WrittenPicture> Finish() = 0;
};

/// `target` must be seekable unless `isApart`: pages of files that worker processes read are put
/// together in memory first. `files` must outlive the sink.
std::unique_ptr<PageSink> NewPageSink(TStream& target, const TiffKind& kind, SourceFiles& files,
                                      bool isApart);

}  // namespace rasterkit::detail
