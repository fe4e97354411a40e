#pragma once

#include <rasterkit/codecs/tiff/pages/page_plan.h>
#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>

namespace rasterkit::detail {

/// Compresses and writes all blocks of a page on up to `threads` threads and returns the tags of
/// its structure. The bytes do not depend on the number of threads.
TagMap WriteBlocks(const Pixels& pixels, const PagePlan& plan, int threads, TagFileWriter& file);

}  // namespace rasterkit::detail
