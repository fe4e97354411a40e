#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/files/system_file.h>
#include <rasterkit/runtime/worker/fields.h>

/// TIFF files of several pages that a worker process puts together, so that no byte of the source
/// is parsed in the host.
namespace rasterkit::detail {

/// One page of the new file: page `page`, counted from 1, of the source, or of the pages that were
/// written anew.
struct PageOrder {
  bool isNew = false;
  int page = 1;
  /// Other metadata and another position; nothing: the page stays as it is.
  std::optional<PictureWriting> writing;
  /// The place among `count` pages of the finished file, counted from 1.
  int newPage = 1, count = 1;
  /// The page of the source that a new page comes from, counted from 1; 0 for none.
  int oldPage = 0;
};

struct DocumentOrder {
  bool isBigTiff = false, isBigEndian = false;
  std::vector<PageOrder> pages;
  /// A TIFF file with the pages that were written anew; empty if there is none.
  std::vector<uint8_t> newPages;
};

/// A page of the order that is damaged so that it cannot be copied.
struct DamagedPage {
  /// Its index in the order.
  size_t index = 0;
  std::string reason;
};

struct IsolatedDocument {
  /// If there are any, nothing else is known: there is no file.
  std::vector<DamagedPage> damaged;
  std::vector<uint8_t> bytes;
  /// One for each page of the order.
  std::vector<WrittenPicture> pages;
};

/// Puts the pages together in a worker process. The new file is held in memory. Throws as
/// TiffDocumentWriter and ReadInWorker do, but tells all damaged pages at once.
RASTERKIT_EXPORT IsolatedDocument WriteDocumentIsolated(SystemFile source,
                                                        const DocumentOrder& order,
                                                        const std::function<bool()>& keepGoing);

/// In the worker: does the work and writes the fields of the answer. The result is the content.
RASTERKIT_EXPORT std::vector<uint8_t> AnswerDocument(FieldReader& task, TStream& source,
                                                     FieldWriter& answer);

}  // namespace rasterkit::detail
