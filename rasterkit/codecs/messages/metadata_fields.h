#pragma once

#include <vector>

#include <rasterkit/metadata/metadata.h>
#include <rasterkit/raster/palette.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/fields.h>

/// Metadata of pictures in messages between processes. Every block is bytes of the file, which the
/// host checks again when it reads them.
namespace rasterkit::detail {

RASTERKIT_EXPORT void WriteMetadata(FieldWriter& fields, const Metadata& metadata);
RASTERKIT_EXPORT Metadata ReadMetadata(FieldReader& fields);

RASTERKIT_EXPORT void WriteTags(FieldWriter& fields, const std::vector<TagValue>& tags);
RASTERKIT_EXPORT std::vector<TagValue> ReadTags(FieldReader& fields);

/// At most 256 entries.
RASTERKIT_EXPORT void WritePalette(FieldWriter& fields, const HPALETTE& palette);
RASTERKIT_EXPORT HPALETTE ReadPalette(FieldReader& fields);

/// A profile or none.
RASTERKIT_EXPORT void WriteProfile(FieldWriter& fields, const ColorProfile& profile);
RASTERKIT_EXPORT ColorProfile ReadProfile(FieldReader& fields);

}  // namespace rasterkit::detail
