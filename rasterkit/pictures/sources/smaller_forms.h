#pragma once

#include <optional>
#include <vector>

#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/pictures/sources/picture_source.h>

namespace rasterkit::detail {

/// The smallest form with at least these sides in which a JPEG file is decoded.
std::optional<SmallerForm> SmallestJpeg(const PictureHeader& header, int width, int height);

/// The smallest copy of a page of colors with at least these sides, pixels of the same kind and, within
/// rounding, the same proportions.
std::optional<SmallerForm> SmallestCopy(const PictureHeader& header,
                                        const std::vector<TiffExtraPageHeader>& pages, int width,
                                        int height);

}  // namespace rasterkit::detail
