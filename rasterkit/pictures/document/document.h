#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/pictures/pending_save.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// What is known about a page of a document.
struct DocumentPage {
  /// The file that the page comes from, empty for none, and its page there, counted from 1.
  std::string file;
  int page = 1;
  /// Of a page that stays: as stored, not yet upright. Of a picture: after its steps.
  int width = 0, height = 0;
  PixelLayout layout;
  /// As stored.
  Form form;
  Resolution resolution;
  int smallerCopies = 0, masks = 0;
  /// Bytes that a page which stays takes in a file, at most; 0 for a picture, and for a page of a
  /// file that a worker process reads.
  uint64_t bytes = 0;
  /// Why the header cannot be read; empty if it can.
  std::string error;
};

/// A list of pages: pages of TIFF files, which stay as they are until they are replaced, and
/// pictures of any source.
///
///     Document scans = Document::Open("scans.tif");
///     scans.Replace(2, scans.Page(2).Turn(1)).Remove(5);
///     scans.Append(Document::Open("cover.png")).Save("scans.tif");
///
/// A page that stays keeps its encoded strips and tiles byte for byte, every tag, its smaller
/// copies and masks; only tag 297, the number of the page, follows a new place. Saving decodes one
/// page at a time. The file has the order of bytes and the kind (classic or BigTIFF) of the first
/// page that comes from a TIFF file; a page whose numbers have the other order of bytes is decoded
/// and encoded anew, without loss, and a note says so. Pictures of other formats are compressed
/// with CCITT G4 (black and white) or Deflate unless an option says otherwise.
///
/// Pages are counted from 1; calls throw RangeError for a page that does not exist. Copies are
/// cheap: they share the open files. Const calls may be made from several threads at once.
class RASTERKIT_EXPORT Document {
 public:
  Document();
  Document(const Document&);
  Document(Document&&) noexcept;
  Document& operator=(Document) noexcept;
  ~Document();

  /// All pages of a TIFF file, or the picture of any other file. `options.page` is not used. Reads
  /// the header of the first page and keeps the file open. Throws as Picture::Open.
  static Document Open(const std::string& file, const OpenOptions& options = {});
  static Document Open(std::vector<uint8_t> bytes, const OpenOptions& options = {});
  /// A document of one page.
  static Document Of(const Picture& picture);

  int Pages() const;
  /// The upright picture of a page; reads its header. Throws as Picture::Open.
  Picture Page(int page) const;
  /// True for a page of a TIFF file that was not replaced.
  bool IsAsStored(int page) const;
  /// Facts of all pages, from their headers. A page whose header cannot be read has an error.
  std::vector<DocumentPage> List() const;
  /// Why the files of the pages can have further pages that cannot be found: a chain of pages that
  /// ends in damage, or is too long. Empty for sound files. Saving reports it as a loss.
  std::vector<std::string> Warnings() const;

  Document& Append(const Document& pages) { return Insert(Pages() + 1, pages); }
  Document& Append(const Picture& picture) { return Insert(Pages() + 1, Of(picture)); }
  /// The first of the new pages becomes page `page`, 1 to Pages() + 1.
  Document& Insert(int page, const Document& pages);
  Document& Insert(int page, const Picture& picture) { return Insert(page, Of(picture)); }
  Document& Remove(int page);
  /// The page becomes page `to`; those between move by one.
  Document& Move(int page, int to);
  Document& Replace(int page, const Picture& picture);
  /// Keeps these pages in this order; a page can be given several times.
  Document& Select(std::span<const int> pages);

  /// What Save would do; decodes no pixel and writes nothing.
  Report Plan(const std::string& file, const SaveOptions& options = {}) const;
  /// What Save to a stream would do, which has no files beside it.
  Report PlanStream(const SaveOptions& options = {}) const;
  /// Writes the file, and the files beside it that state the position of its first page, as a whole
  /// or not at all. The report states size and form of the first page; of several pages, each loss
  /// names its page. A format that holds one picture takes a document of one page. Throws
  /// UnsupportedError for several pages and RangeError for none.
  Report Save(const std::string& file, const SaveOptions& options = {}, const Run& run = {}) const;
  /// The same without files beside it; `options.type` or a TIFF file.
  Report Save(TStream& stream, const SaveOptions& options = {}, const Run& run = {}) const;
  /// Does all of Save but the last step.
  PendingSave Prepare(const std::string& file, const SaveOptions& options = {},
                      const Run& run = {}) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit
