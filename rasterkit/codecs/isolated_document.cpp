#include <exception>
#include <limits>
#include <utility>

#include <rasterkit/codecs/isolated_document.h>
#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/codecs/messages/writing_fields.h>
#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/codecs/tiff/tiff_document.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

/// More than a file can have directories that are read.
constexpr size_t kMostPages = 1000000, kLeastOrderBytes = 18, kLeastWrittenBytes = 4;

void WriteOrder(FieldWriter& fields, const DocumentOrder& order) {
  fields.Bool(order.isBigTiff);
  fields.Bool(order.isBigEndian);
  fields.List(order.pages, [&](const PageOrder& page) {
    fields.Bool(page.isNew);
    fields.I32(page.page);
    fields.Optional(page.writing,
                    [&](const PictureWriting& writing) { WriteWriting(fields, writing); });
    fields.I32(page.newPage);
    fields.I32(page.count);
    fields.I32(page.oldPage);
  });
  fields.Bytes(order.newPages);
}

/// `newPages` is borrowed from the fields.
DocumentOrder ReadOrder(FieldReader& fields, std::span<const uint8_t>& newPages) {
  DocumentOrder order;
  order.isBigTiff = fields.Bool();
  order.isBigEndian = fields.Bool();
  order.pages = fields.List(kMostPages, kLeastOrderBytes, [&] {
    PageOrder page;
    page.isNew = fields.Bool();
    page.page = fields.I32In(1, std::numeric_limits<int>::max());
    page.writing = fields.Optional([&] { return ReadWriting(fields); });
    page.newPage = fields.I32In(1, std::numeric_limits<int>::max());
    page.count = fields.I32In(1, std::numeric_limits<int>::max());
    page.oldPage = fields.I32In(0, std::numeric_limits<int>::max());
    return page;
  });
  newPages = fields.Bytes(std::numeric_limits<size_t>::max());
  return order;
}

constexpr size_t kLeastDamagedBytes = 8, kMostReasonBytes = size_t{1} << 16;

void WriteDamaged(FieldWriter& fields, const std::vector<DamagedPage>& damaged) {
  fields.List(damaged, [&](const DamagedPage& page) {
    fields.I32(static_cast<int>(page.index));
    fields.ByteText(page.reason);
  });
}

std::vector<DamagedPage> ReadDamaged(FieldReader& fields, size_t pages) {
  return fields.List(pages, kLeastDamagedBytes, [&] {
    DamagedPage page;
    page.index = static_cast<size_t>(fields.I32In(0, static_cast<int>(pages) - 1));
    page.reason = fields.ByteText(kMostReasonBytes);
    return page;
  });
}

WrittenPicture CopyOne(TiffDocumentWriter& writer, const TiffDocumentReader& source,
                       const TiffDocumentReader& from, const PageOrder& page) {
  const int oldPage = page.isNew ? page.oldPage : page.page;
  if (oldPage > 0) NumberMovedPage(source, {oldPage, page.newPage, page.count}, writer);
  return page.writing ? writer.CopyPage(from, page.page, *page.writing)
                      : writer.CopyPage(from, page.page);
}

}  // namespace

IsolatedDocument WriteDocumentIsolated(SystemFile source, const DocumentOrder& order,
                                       const std::function<bool()>& keepGoing) {
  FieldWriter task;
  WriteOrder(task, order);
  std::exception_ptr error;
  IsolatedDocument document;
  const auto place = [&](FieldReader& fields, uint64_t size) -> std::span<uint8_t> {
    error = ReadOutcome(fields);
    if (!error) {
      document.damaged = ReadDamaged(fields, order.pages.size());
      document.pages =
          fields.List(order.pages.size(), kLeastWrittenBytes, [&] { return ReadWritten(fields); });
      const bool isComplete = document.pages.size() == order.pages.size();
      if (document.damaged.empty() && !isComplete) ThrowBadMessage("pages are missing");
    }
    fields.RequireEnd();
    RequirePictureMemory(size, "a file of several pages");
    document.bytes.resize(static_cast<size_t>(size));
    return document.bytes;
  };
  ReadInWorker(WorkerReader::pictures, WorkerTask::document, task.Written(), std::move(source),
               keepGoing, place);
  if (error) std::rethrow_exception(error);
  return document;
}

std::vector<uint8_t> AnswerDocument(FieldReader& task, TStream& source, FieldWriter& answer) {
  std::span<const uint8_t> newPages;
  const DocumentOrder order = ReadOrder(task, newPages);
  task.RequireEnd();
  TMemoryStream file;
  std::vector<WrittenPicture> written;
  std::vector<DamagedPage> damaged;
  std::exception_ptr error;
  try {
    const LimitsScope limits;
    const TiffDocumentReader old(source);
    TSpanStream newStream(newPages);
    std::optional<TiffDocumentReader> added;
    if (!newPages.empty()) added.emplace(newStream);
    TiffDocumentWriter writer(file, order.isBigTiff, order.isBigEndian);
    for (const PageOrder& page : order.pages) {
      RequireTime();
      if (page.isNew && !added) ThrowBadMessage("new pages are missing");
      try {
        written.push_back(CopyOne(writer, old, page.isNew ? *added : old, page));
      } catch (const FormatError& failure) {
        damaged.push_back({static_cast<size_t>(&page - order.pages.data()), failure.Reason()});
      }
    }
    if (damaged.empty()) writer.Finish();
  } catch (...) {
    error = std::current_exception();
    file.Clear();
  }
  if (!damaged.empty()) file.Clear();
  WriteOutcome(answer, error);
  if (!error) {
    WriteDamaged(answer, damaged);
    answer.List(written, [&](const WrittenPicture& page) { WriteWritten(answer, page); });
  }
  return file.TakeBytes();
}

}  // namespace rasterkit::detail
