#pragma once

#include <functional>
#include <vector>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/system_file.h>
#include <rasterkit/runtime/worker/fields.h>

/// Headers and pixels that a worker process reads: ReadPageHeader and DecodePixels apart from the
/// host. Neither knows drawn formats; see ReadPicture for these. Pages are counted from 1.
namespace rasterkit::detail {

/// Reads the header of an open file; `type` becomes its type. `keepGoing`, if set, is called while
/// the worker works, and ends it by returning false. Throws as ReadPageHeader and ReadInWorker do.
RASTERKIT_EXPORT PictureHeader ReadHeaderIsolated(SystemFile file, PictureType& type,
                                                  const std::function<bool()>& keepGoing,
                                                  int page = 1);

/// Decodes the pixels of an open file.
RASTERKIT_EXPORT Pixels DecodePixelsIsolated(SystemFile file, int threads, CodecReport* report,
                                             const std::function<bool()>& keepGoing, int page = 1);

/// Copies the compressed pixels of an open file with other metadata; see CopyPicture. The new file
/// is held in memory before it is written.
RASTERKIT_EXPORT WrittenPicture CopyPictureIsolated(SystemFile file, PictureType type,
                                                    const PictureWriting& writing, TStream& stream,
                                                    const std::function<bool()>& keepGoing,
                                                    int page = 1);

/// In the worker: does the work and writes the fields of the answer. The result is the content.
RASTERKIT_EXPORT void AnswerHeader(FieldReader& task, TStream& file, FieldWriter& answer);
RASTERKIT_EXPORT Pixels AnswerPixels(FieldReader& task, TStream& file, FieldWriter& answer);
RASTERKIT_EXPORT std::vector<uint8_t> AnswerCopy(FieldReader& task, TStream& file,
                                                 FieldWriter& answer);

}  // namespace rasterkit::detail
