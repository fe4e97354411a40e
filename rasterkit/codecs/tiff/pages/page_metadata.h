#pragma once

#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/tiff/pages/tag_reader.h>

namespace rasterkit::detail {

/// Reads metadata, orientation, resolution and position tags of a page into `header`. What is too
/// large, or damaged, gives a warning.
void ReadPageMetadata(const TagReader& reader, const TagDirectory& page, PictureHeader& header);

/// The dots per inch of tags 282, 283 and 296; unknown without a unit.
Resolution ResolutionOfPage(const TagReader& reader, const TagDirectory& page);

/// The tags of a directory for what is no pixel, in the types of a classic file; pointers (34665,
/// 34853, 40965) are not among them.
struct PageTags {
  std::vector<TagValue> main, exif, gps, interop;
};

/// What the tags are about.
struct SampleFacts {
  ColorModel model = ColorModel::gray;
  /// True if the samples are those of the source, so that tags about them hold.
  bool areOfSource = false;
  /// True if tags about inks hold.
  bool areInks = false;
};

/// Sorts metadata and position into the tags of a page. What has no place in a TIFF file is added
/// to `changes`.
PageTags TagsOfMetadata(const PictureWriting& writing, const SampleFacts& samples,
                        Changes& changes);

}  // namespace rasterkit::detail
