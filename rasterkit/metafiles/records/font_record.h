#pragma once

#include <rasterkit/drawing/ink/drawing_objects.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>

namespace rasterkit::detail {

/// How a record stores a font: WMF has 16-bit numbers and a face name in bytes, EMF has 32-bit
/// numbers and a face name in UTF-16.
enum class FontLayout { wmf, emf };

/// Length of a face name: bytes in WMF, UTF-16 units in EMF.
inline constexpr size_t kFaceNameLength = 32;

/// Reads a font at the current position. A face name that the record cuts off keeps the characters
/// that are present. Fonts with the name of a symbol font get the symbol charset, which many
/// programs fail to write. Throws FormatError if the record ends before the face name.
LogicalFont ReadFont(MetafileBytes& fields, FontLayout layout);

}  // namespace rasterkit::detail
