#pragma once

#include <string_view>

#include <rasterkit/metadata/edit/edit_metadata.h>
#include <rasterkit/metadata/edit/exif_tag_table.h>
#include <rasterkit/metadata/exif_block.h>

namespace rasterkit::detail {

/// Changes the EXIF block of metadata and keeps it a valid one: directories that come into being
/// get the tags that each must have, and stated versions follow their tags.
class ExifEditor {
 public:
  /// Throws FormatError for a damaged block.
  ExifEditor(Metadata& metadata, const EditedPicture& picture);

  ExifBlock& Block() { return block_; }
  /// Reads and sets a value; throws RangeError.
  void Set(const ExifTagFact& fact, std::string_view text);
  void Set(ExifDirectoryId directory, const TagValue& value);
  void SetText(ExifDirectoryId directory, uint16_t tag, const std::string& text);
  /// Completes the block and puts it back; empty if nothing is in it.
  void Finish();

 private:
  void CompleteMain();
  void CompleteExif();
  void RaiseVersions(ExifDirectoryId directory, uint16_t tag);

  Metadata& metadata_;
  const EditedPicture& picture_;
  bool hadBlock_, hadExif_;
  bool setsGps_ = false;
  ExifBlock block_;
};

}  // namespace rasterkit::detail
