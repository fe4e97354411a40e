#pragma once

#include <functional>

#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/pictures/reading/convert_metafile.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/fields.h>

/// What is read from a picture file, in messages between processes.
namespace rasterkit::detail {

/// How a picture is to be read; `keepGoing` stays in the host.
RASTERKIT_EXPORT void WriteReading(FieldWriter& fields, const PictureReading& reading);
RASTERKIT_EXPORT PictureReading ReadReading(FieldReader& fields);

RASTERKIT_EXPORT void WritePhotoFacts(FieldWriter& fields, const PhotoFacts& facts);
RASTERKIT_EXPORT PhotoFacts ReadPhotoFacts(FieldReader& fields);

RASTERKIT_EXPORT void WriteMetafileFacts(FieldWriter& fields, const MetafileFacts& facts);
RASTERKIT_EXPORT MetafileFacts ReadMetafileFacts(FieldReader& fields);

/// All facts and the rows' properties. Throws FormatError for facts that ReadPicture never gives.
RASTERKIT_EXPORT void WritePicture(FieldWriter& fields, const LoadedFrame& picture);
/// Reads the facts into `picture`, and returns what is known about its rows.
RASTERKIT_EXPORT FrameHead ReadPictureHead(FieldReader& fields, PictureFile& picture);

/// Everything except the bytes.
RASTERKIT_EXPORT void WriteConvertedMetafile(FieldWriter& fields,
                                             const ConvertedMetafile& metafile);
RASTERKIT_EXPORT void ReadConvertedMetafile(FieldReader& fields, ConvertedMetafile& metafile);

}  // namespace rasterkit::detail
