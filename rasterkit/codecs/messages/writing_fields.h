#pragma once

#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/fields.h>

/// How a picture is written, and how it was written, in messages between processes.
namespace rasterkit::detail {

RASTERKIT_EXPORT void WriteWriting(FieldWriter& fields, const PictureWriting& writing);
RASTERKIT_EXPORT PictureWriting ReadWriting(FieldReader& fields);

RASTERKIT_EXPORT void WriteWritten(FieldWriter& fields, const WrittenPicture& written);
/// Throws FormatError for a kind of loss that does not exist.
RASTERKIT_EXPORT WrittenPicture ReadWritten(FieldReader& fields);

}  // namespace rasterkit::detail
