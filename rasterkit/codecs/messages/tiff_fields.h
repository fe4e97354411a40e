#pragma once

#include <vector>

#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/fields.h>

/// The tags of TIFF files and kinds of metadata in messages between processes.
namespace rasterkit::detail {

RASTERKIT_EXPORT void WriteTiffFacts(FieldWriter& fields, const TiffFacts& facts);
/// Throws FormatError for facts that ReadTiffFacts never gives: an orientation beyond 8, a list of
/// numbers with another length.
RASTERKIT_EXPORT TiffFacts ReadTiffFacts(FieldReader& fields);

RASTERKIT_EXPORT void WriteMetadataKinds(FieldWriter& fields,
                                         const std::vector<MetadataKind>& kinds);
RASTERKIT_EXPORT std::vector<MetadataKind> ReadMetadataKinds(FieldReader& fields);

/// An orientation tag, 1 to 8.
RASTERKIT_EXPORT void WriteOrientation(FieldWriter& fields, const std::optional<int>& orientation);
RASTERKIT_EXPORT std::optional<int> ReadOrientation(FieldReader& fields);

}  // namespace rasterkit::detail
