#include <algorithm>

#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/new_page.h>
#include <rasterkit/codecs/tiff/pages/page_directory.h>
#include <rasterkit/codecs/tiff/pages/page_output.h>

namespace rasterkit {

namespace {

using detail::PagePlan;
using detail::PageTags;

/// Bytes for directories and their short values.
constexpr uint64_t kSpareBytes = 1 << 20;

uint64_t Plus(uint64_t a, uint64_t b) {
  return b > UINT64_MAX - a ? UINT64_MAX : a + b;
}

uint64_t BytesOfTags(const PageTags& tags) {
  uint64_t bytes = kSpareBytes;
  for (const auto* values : {&tags.main, &tags.exif, &tags.gps, &tags.interop}) {
    for (const TagValue& value : *values) bytes += value.bytes.size() + 32;
  }
  return bytes;
}

/// The bands have other meanings than the layout can say: the source's own list is kept.
void TakeExtraSamples(const Metadata& metadata, PagePlan& plan) {
  for (const TagValue& value : metadata.tiffTags) {
    const size_t count = plan.extraSamples.size();
    if (value.tag != TIFFTAG_EXTRASAMPLES || value.type != TIFF_SHORT || value.count != count ||
        value.bytes.size() != 2 * count || plan.layout.alpha != AlphaKind::none) {
      continue;
    }
    for (size_t i = 0; i < count; i++) {
      plan.extraSamples[i] =
          static_cast<uint16_t>(value.bytes[2 * i] | value.bytes[2 * i + 1] << 8);
    }
  }
}

}  // namespace

namespace detail {

NewPage::NewPage(const Pixels& pixels, const PictureWriting& writing,
                 std::span<const TiffExtraPage> extraPages)
    : writing_(writing) {
  parts_.push_back({&pixels, PlanPage(pixels, writing.form, changes_), 0});
  TakeExtraSamples(writing.metadata, parts_[0].plan);
  for (const TiffExtraPage& extra : extraPages) {
    Changes ofCopy;
    // A page without a type would count as one of its own.
    const uint32_t type = extra.subfileType == 0 ? 1 : extra.subfileType;
    parts_.push_back({&extra.pixels, PlanPage(extra.pixels, extra.form, ofCopy), type});
  }
  PlanTags();
}

NewPage::NewPage(const Pixels& like, WrittenSize size, const PictureWriting& writing)
    : writing_(writing) {
  parts_.push_back({nullptr, PlanPage(like, size, writing.form, changes_), 0});
  TakeExtraSamples(writing.metadata, parts_[0].plan);
  PlanTags();
}

void NewPage::PlanTags() {
  const PagePlan& first = parts_[0].plan;
  const bool hasInks = first.form.photometric == PHOTOMETRIC_SEPARATED;
  tags_ = TagsOfMetadata(writing_, {first.layout.model, false, hasInks}, changes_);
}

uint64_t NewPage::MostBytes() const {
  uint64_t most = BytesOfTags(tags_);
  for (const Part& part : parts_) {
    most = Plus(most, Plus(part.plan.MostBytes(), uint64_t{part.plan.Blocks()} * 16 + kSpareBytes));
  }
  return most;
}

const PagePlan& NewPage::PlanFor(const TagFileWriter& file) {
  PagePlan& plan = parts_[0].plan;
  plan.form.isBigEndian = file.IsBigEndian();
  plan.form.isBigTiff = file.IsBig();
  return plan;
}

uint64_t NewPage::WriteTags(TagMap structure, TagFileWriter& file, uint64_t linkAt,
                            Changes& changes) {
  AddPageTags(tags_, file, structure, changes);
  if (pageNumber_) {
    structure[TIFFTAG_SUBFILETYPE] = LongTag(TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
    structure[TIFFTAG_PAGENUMBER] = *pageNumber_;
  }
  const TagFileWriter::Written written = file.WriteDirectory(structure, changes);
  file.Link(linkAt, written.at);
  return written.linkAt;
}

uint64_t NewPage::Write(TagFileWriter& file, uint64_t linkAt, Changes& changes) {
  for (Part& part : parts_) {
    part.plan.form.isBigEndian = file.IsBigEndian();
    part.plan.form.isBigTiff = file.IsBig();
    TagMap directory = WriteBlocks(*part.pixels, part.plan, writing_.threads, file);
    if (part.subfileType == 0) {
      linkAt = WriteTags(std::move(directory), file, linkAt, changes);
      continue;
    }
    directory[TIFFTAG_SUBFILETYPE] = LongTag(TIFFTAG_SUBFILETYPE, part.subfileType);
    const TagFileWriter::Written written = file.WriteDirectory(directory, changes);
    file.Link(linkAt, written.at);
    linkAt = written.linkAt;
  }
  return linkAt;
}

}  // namespace detail

}  // namespace rasterkit
