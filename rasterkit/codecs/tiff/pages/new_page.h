#pragma once

#include <optional>
#include <span>
#include <vector>

#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/page_plan.h>
#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>

namespace rasterkit::detail {

/// Plans and writes a page of new pixels with its smaller copies and masks.
class NewPage {
 public:
  /// Arguments must outlive this object. Throws as WriteTiff does.
  NewPage(const Pixels& pixels, const PictureWriting& writing,
          std::span<const TiffExtraPage> extraPages);

  /// A page of pixels of the kind of `like`, which come row by row.
  NewPage(const Pixels& like, WrittenSize size, const PictureWriting& writing);

  /// The planned form of the page.
  const TiffForm& Form() const { return parts_[0].plan.form; }
  /// Upper bound of the bytes that `Write` adds to a file.
  uint64_t MostBytes() const;
  /// The plan of the page without its smaller copies, in the order of bytes of the file.
  const PagePlan& PlanFor(const TagFileWriter& file);
  /// Writes the directory of the page, whose blocks are in the file, and makes it the next one of
  /// the link; returns the link to the page after it. `structure` are the tags of the blocks.
  uint64_t WriteTags(TagMap structure, TagFileWriter& file, uint64_t linkAt, Changes& changes);
  /// Tag 297 of the page, which makes it one of several.
  void SetPageNumber(const TagValue& number) { pageNumber_ = number; }
  /// Writes the page and makes it the next directory of the link; returns the link to the page
  /// after it.
  uint64_t Write(TagFileWriter& file, uint64_t linkAt, Changes& changes);
  /// The planned page, with the changes that are known before it is written.
  WrittenPicture Written() const { return {Form(), parts_[0].plan.layout, changes_}; }

 private:
  void PlanTags();
  struct Part {
    const Pixels* pixels = nullptr;
    PagePlan plan;
    uint32_t subfileType = 0;
  };

  const PictureWriting& writing_;
  std::vector<Part> parts_;
  PageTags tags_;
  std::optional<TagValue> pageNumber_;
  Changes changes_;
};

}  // namespace rasterkit::detail
