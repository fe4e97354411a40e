#pragma once

#include <cstdint>

#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/fields.h>

/// Headers and pixels of pictures in messages between processes. The pixels' bytes travel apart
/// from the fields.
namespace rasterkit::detail {

RASTERKIT_EXPORT void WriteHeader(FieldWriter& fields, const PictureHeader& header);
/// Throws FormatError for a header that no codec gives: sides below 0, an orientation beyond 8, a
/// layout without bands.
RASTERKIT_EXPORT PictureHeader ReadHeader(FieldReader& fields);

RASTERKIT_EXPORT void WriteForm(FieldWriter& fields, const Form& form);
RASTERKIT_EXPORT Form ReadForm(FieldReader& fields);

RASTERKIT_EXPORT void WriteLayout(FieldWriter& fields, const PixelLayout& layout);
RASTERKIT_EXPORT PixelLayout ReadLayout(FieldReader& fields);

/// Writes everything about pixels except their bytes.
RASTERKIT_EXPORT void WritePixels(FieldWriter& fields, const Pixels& pixels);
/// Reads what WritePixels wrote, and allocates the pixels, whose bytes are to be filled. Throws
/// FormatError if they need another number of bytes, LimitError beyond the limits of the thread.
RASTERKIT_EXPORT Pixels ReadPixels(FieldReader& fields, uint64_t bytes);

/// All bytes of the pixels, one row after another.
RASTERKIT_EXPORT std::span<const uint8_t> BytesOf(const Pixels& pixels);
RASTERKIT_EXPORT std::span<uint8_t> BytesOf(Pixels& pixels);

}  // namespace rasterkit::detail
