#pragma once

#include <rasterkit/metadata/edit/metadata_edit.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What an edit must know about the picture.
struct EditedPicture {
  enum class Format { jpeg, tiff, other };
  Format format = Format::other;
  int width = 0, height = 0;
  /// The pixels are not those of the file any more, but upright.
  bool isTurned = false;
};

/// Makes an edit. What goes without a request (a damaged block that could hide a
/// position) is added to `changes`. Throws RangeError for an unknown tag or a value that does not
/// fit its tag, with the name and the reason; FormatError for a damaged block that would have to be
/// changed. `metadata` is then unspecified.
RASTERKIT_EXPORT void EditMetadata(Metadata& metadata, const MetadataEdit& edit,
                                   const EditedPicture& picture, Changes& changes);

/// True if an edit removes what previews, thumbnails of the file header and trailers, which are
/// files of their own, could still state.
RASTERKIT_EXPORT bool RemovesHidden(const MetadataEdit& edit);

}  // namespace rasterkit
