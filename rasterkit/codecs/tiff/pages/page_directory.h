#pragma once

#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>

namespace rasterkit::detail {

/// Writes the EXIF, GPS and interoperability directories and adds the pointers to them, and the
/// other tags, to the main directory of a page. Tags that it has already stay.
void AddPageTags(const PageTags& tags, TagFileWriter& file, TagMap& directory, Changes& changes);

}  // namespace rasterkit::detail
