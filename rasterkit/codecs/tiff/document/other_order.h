#pragma once

#include <span>

#include <rasterkit/codecs/tiff/pages/tag_reader.h>

namespace rasterkit::detail {

/// True if the encoded pixels of a page, its smaller copies and masks are the same bytes in a file
/// of the other order of bytes.
bool FitsOtherOrder(const TagReader& reader, const TagDirectory& first,
                    std::span<const uint64_t> following);

}  // namespace rasterkit::detail
