#include <exception>
#include <limits>
#include <utility>

#include <rasterkit/codecs/isolated_pixels.h>
#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/codecs/messages/header_fields.h>
#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/codecs/messages/writing_fields.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/worker/worker_input.h>

namespace rasterkit::detail {
namespace {

int ReadPage(FieldReader& task) {
  return task.I32In(1, std::numeric_limits<int>::max());
}

/// The first bytes are compared here; everything else is left to the worker.
WorkerReader ReaderOf(const SystemFile& file) {
  const auto stream = WorkerInputStream(SameFile(file));
  return SniffPictureType(*stream) == PictureType::heif ? WorkerReader::heif
                                                        : WorkerReader::pictures;
}

}  // namespace

PictureHeader ReadHeaderIsolated(SystemFile file, PictureType& type,
                                 const std::function<bool()>& keepGoing, int page) {
  FieldWriter task;
  task.I32(page);
  std::exception_ptr error;
  PictureHeader header;
  const auto place = [&](FieldReader& fields, uint64_t) -> std::span<uint8_t> {
    error = ReadOutcome(fields);
    type = fields.Enum(kLastPictureType);
    if (!error) header = ReadHeader(fields);
    fields.RequireEnd();
    return {};
  };
  const WorkerReader reader = ReaderOf(file);
  ReadInWorker(reader, WorkerTask::header, task.Written(), std::move(file), keepGoing, place);
  if (error) std::rethrow_exception(error);
  return header;
}

Pixels DecodePixelsIsolated(SystemFile file, int threads, CodecReport* report,
                            const std::function<bool()>& keepGoing, int page) {
  FieldWriter task;
  task.I32(page);
  task.I32(threads);
  std::exception_ptr error;
  Pixels pixels;
  const auto place = [&](FieldReader& fields, uint64_t bytes) -> std::span<uint8_t> {
    error = ReadOutcome(fields);
    const CodecReport noticed = ReadReport(fields);
    if (report != nullptr) report->Append(noticed);
    if (!error) pixels = ReadPixels(fields, bytes);
    fields.RequireEnd();
    return error ? std::span<uint8_t>() : BytesOf(pixels);
  };
  const WorkerReader reader = ReaderOf(file);
  ReadInWorker(reader, WorkerTask::pixels, task.Written(), std::move(file), keepGoing, place);
  if (error) std::rethrow_exception(error);
  if (auto* raster = std::get_if<Raster>(&pixels)) raster->ClearPadding();
  return pixels;
}

WrittenPicture CopyPictureIsolated(SystemFile file, PictureType type, const PictureWriting& writing,
                                   TStream& stream, const std::function<bool()>& keepGoing,
                                   int page) {
  FieldWriter task;
  task.I32(page);
  task.Enum(type);
  WriteWriting(task, writing);
  std::exception_ptr error;
  WrittenPicture written;
  std::vector<uint8_t> bytes;
  const auto place = [&](FieldReader& fields, uint64_t size) -> std::span<uint8_t> {
    error = ReadOutcome(fields);
    if (!error) written = ReadWritten(fields);
    fields.RequireEnd();
    RequirePictureMemory(size, "a copied file");
    bytes.resize(static_cast<size_t>(size));
    return bytes;
  };
  ReadInWorker(WorkerReader::pictures, WorkerTask::copy, task.Written(), std::move(file), keepGoing,
               place);
  if (error) std::rethrow_exception(error);
  stream.Write(bytes);
  return written;
}

void AnswerHeader(FieldReader& task, TStream& file, FieldWriter& answer) {
  const int page = ReadPage(task);
  task.RequireEnd();
  PictureHeader header;
  std::exception_ptr error;
  const PictureType type = SniffPictureType(file);
  try {
    header = ReadPageHeader(file, type, page);
  } catch (...) {
    error = std::current_exception();
  }
  WriteOutcome(answer, error);
  answer.Enum(type);
  if (!error) WriteHeader(answer, header);
}

Pixels AnswerPixels(FieldReader& task, TStream& file, FieldWriter& answer) {
  const int page = ReadPage(task);
  FrameOptions options;
  options.threads = task.I32();
  task.RequireEnd();
  Pixels pixels;
  CodecReport report;
  std::exception_ptr error;
  try {
    const PictureType type = SniffPictureType(file);
    PageView view(file, type, page);
    pixels = DecodePixels(view.Stream(), type, options, &report);
  } catch (...) {
    error = std::current_exception();
    pixels = Raster();
  }
  WriteOutcome(answer, error);
  WriteReport(answer, report);
  if (!error) WritePixels(answer, pixels);
  return pixels;
}

std::vector<uint8_t> AnswerCopy(FieldReader& task, TStream& file, FieldWriter& answer) {
  const int page = ReadPage(task);
  const PictureType type = task.Enum(kLastPictureType);
  const PictureWriting writing = ReadWriting(task);
  task.RequireEnd();
  TMemoryStream copy;
  WrittenPicture written;
  std::exception_ptr error;
  try {
    PageView view(file, type, page);
    written = CopyPicture(type, view.Stream(), writing, copy);
  } catch (...) {
    error = std::current_exception();
    copy.Clear();
  }
  WriteOutcome(answer, error);
  if (!error) WriteWritten(answer, written);
  return copy.TakeBytes();
}

}  // namespace rasterkit::detail
