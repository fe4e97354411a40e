#include <algorithm>

#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/new_page.h>
#include <rasterkit/codecs/tiff/pages/page_directory.h>
#include <rasterkit/codecs/tiff/pages/page_output.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using detail::PagePlan;
using detail::PageTags;
using detail::TagFileWriter;
using detail::TagMap;

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
  const PagePlan& first = parts_[0].plan;
  const bool hasInks = first.form.photometric == PHOTOMETRIC_SEPARATED;
  tags_ = TagsOfMetadata(writing, {first.layout.model, false, hasInks}, changes_);
}

uint64_t NewPage::MostBytes() const {
  uint64_t most = BytesOfTags(tags_);
  for (const Part& part : parts_) {
    most = Plus(most, Plus(part.plan.MostBytes(), uint64_t{part.plan.Blocks()} * 16 + kSpareBytes));
  }
  return most;
}

uint64_t NewPage::Write(TagFileWriter& file, uint64_t linkAt, Changes& changes) {
  for (Part& part : parts_) {
    part.plan.form.isBigEndian = file.IsBigEndian();
    part.plan.form.isBigTiff = file.IsBig();
    TagMap directory = WriteBlocks(*part.pixels, part.plan, writing_.threads, file);
    if (part.subfileType != 0) {
      directory[TIFFTAG_SUBFILETYPE] = LongTag(TIFFTAG_SUBFILETYPE, part.subfileType);
    } else {
      AddPageTags(tags_, file, directory, changes);
      if (pageNumber_) {
        directory[TIFFTAG_SUBFILETYPE] = LongTag(TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
        directory[TIFFTAG_PAGENUMBER] = *pageNumber_;
      }
    }
    const TagFileWriter::Written written = file.WriteDirectory(directory, changes);
    file.Link(linkAt, written.at);
    linkAt = written.linkAt;
  }
  return linkAt;
}

}  // namespace detail

namespace {

WrittenPicture WriteFile(detail::NewPage& page, TStream& stream) {
  WrittenPicture written = page.Written();
  auto& form = std::get<TiffForm>(written.form);
  if (!form.isBigTiff && page.MostBytes() > UINT32_MAX) {
    form.isBigTiff = true;
    written.changes.Note("written as a BigTIFF file, which may exceed 4 GiB");
  }
  TagFileWriter file(stream, form.isBigTiff, form.isBigEndian);
  page.Write(file, file.FirstLinkAt(), written.changes);
  file.Finish();
  return written;
}

}  // namespace

WrittenPicture WriteTiff(const Pixels& pixels, const PictureWriting& writing,
                         std::span<const TiffExtraPage> extraPages, TStream& stream) {
  const LimitsScope limits;
  detail::NewPage page(pixels, writing, extraPages);
  if (IsSeekable(stream)) return WriteFile(page, stream);
  // The header is completed last.
  TMemoryStream memory;
  WrittenPicture written = WriteFile(page, memory);
  stream.Write(memory.Bytes());
  return written;
}

WrittenPicture WriteTiff(const Pixels& pixels, const PictureWriting& writing, TStream& stream) {
  return WriteTiff(pixels, writing, {}, stream);
}

}  // namespace rasterkit
