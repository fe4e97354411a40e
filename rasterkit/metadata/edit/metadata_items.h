#pragma once

#include <initializer_list>
#include <string_view>

#include <rasterkit/metadata/metadata.h>

namespace rasterkit::detail {

/// Removes the items of TIFF tag 42112, GDAL's copy of metadata, whose names or values have one of
/// these words, given in lower case, in any case of letters. A tag without items goes.
void RemoveItems(Metadata& metadata, std::initializer_list<std::string_view> words);

}  // namespace rasterkit::detail
