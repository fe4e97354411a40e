#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <span>
#include <vector>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/system_file.h>
#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_message.h>
#include <rasterkit/runtime/worker/worker_setup.h>

/// The host's side of reading in a worker process, and the messages of both sides.
///
///     request  kReadPicture   task; the file, and memory with the fields of the task
///     answer   kPictureRead   sizes of fields and content; a piece of each
///     request  kMorePicture   which one of the two, position
///     answer   kPiece         a piece
///
/// A piece is memory with the bytes from the position on, at most kMostWorkerMemoryBytes. Fields
/// describe what was read. The content is the rows of a picture, or the bytes of a file.
namespace rasterkit::detail {

enum PictureMessageKind : uint16_t {
  kReadPicture = kFirstPictureKind,
  kPictureRead,
  kMorePicture,
  kPiece,
};

/// What a worker does with the file.
enum class WorkerTask {
  /// DecodeFrame.
  frame,
  /// ReadPicture.
  picture,
  /// ConvertMetafile.
  metafile,
  /// ReadPictureHeader.
  header,
  /// DecodePixels.
  pixels,
  /// CopyPicture.
  copy,
  /// TiffDocumentWriter.
  document,
};

/// Takes the fields of an answer, checks them, and returns the place for `contentBytes` of content,
/// exactly as large. Throws FormatError if the fields do not fit it.
using ContentPlace = std::function<std::span<uint8_t>(FieldReader& fields, uint64_t contentBytes)>;

/// Lets a worker process read a file. `reader` is `metafiles` for a metafile, whose texts need more
/// preparation, else `pictures`. `keepGoing`, if set, is called about every 10 ms on the
/// calling thread while the worker works; if it returns false, the worker is ended and an Error is
/// thrown. Throws FormatError if the worker crashed or answered nonsense, LimitError if it exceeded
/// a limit of the calling thread, UnsupportedError if its program is missing.
RASTERKIT_EXPORT void ReadInWorker(WorkerReader reader, WorkerTask task,
                                   std::span<const uint8_t> fields, SystemFile file,
                                   const std::function<bool()>& keepGoing,
                                   const ContentPlace& place);

/// Writes whether there is an error, and the error.
RASTERKIT_EXPORT void WriteOutcome(FieldWriter& fields, const std::exception_ptr& error);
/// Returns the error; null if there is none.
RASTERKIT_EXPORT std::exception_ptr ReadOutcome(FieldReader& fields);

}  // namespace rasterkit::detail
