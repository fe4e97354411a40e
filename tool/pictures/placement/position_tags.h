#pragma once

#include <vector>

#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/metadata/tag_value.h>

namespace rasterkit::tool {

/// The tags of a TIFF file that state its position, from facts that were read by a worker process.
std::vector<TagValue> PositionTagsOf(const TiffFacts& facts);

}  // namespace rasterkit::tool
