#include <algorithm>

#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/page_directory.h>
#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/page_output.h>
#include <rasterkit/codecs/tiff/pages/page_plan.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
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

struct Page {
  const Pixels* pixels = nullptr;
  PagePlan plan;
  uint32_t subfileType = 0;
};

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

WrittenPicture WritePages(std::vector<Page>& pages, const PictureWriting& writing, TStream& stream,
                          Changes changes) {
  PagePlan& first = pages[0].plan;
  const bool hasInks = first.form.photometric == PHOTOMETRIC_SEPARATED;
  const PageTags tags =
      detail::TagsOfMetadata(writing, {first.layout.model, false, hasInks}, changes);
  uint64_t most = BytesOfTags(tags);
  for (const Page& page : pages) {
    most = Plus(most, Plus(page.plan.MostBytes(), uint64_t{page.plan.Blocks()} * 16 + kSpareBytes));
  }
  if (!first.form.isBigTiff && most > UINT32_MAX) {
    first.form.isBigTiff = true;
    changes.Note("written as a BigTIFF file, which may exceed 4 GiB");
  }
  TagFileWriter file(stream, first.form.isBigTiff, first.form.isBigEndian);
  uint64_t linkAt = file.FirstLinkAt();
  for (Page& page : pages) {
    page.plan.form.isBigEndian = first.form.isBigEndian;
    page.plan.form.isBigTiff = first.form.isBigTiff;
    TagMap directory = WriteBlocks(*page.pixels, page.plan, writing.threads, file);
    if (page.subfileType != 0) {
      directory[TIFFTAG_SUBFILETYPE] = detail::LongTag(TIFFTAG_SUBFILETYPE, page.subfileType);
    } else {
      AddPageTags(tags, file, directory, changes);
    }
    const TagFileWriter::Written written = file.WriteDirectory(directory, changes);
    file.Link(linkAt, written.at);
    linkAt = written.linkAt;
  }
  file.Finish();
  return {first.form, first.layout, std::move(changes)};
}

}  // namespace

WrittenPicture WriteTiff(const Pixels& pixels, const PictureWriting& writing,
                         std::span<const TiffExtraPage> extraPages, TStream& stream) {
  const LimitsScope limits;
  Changes changes;
  std::vector<Page> pages;
  pages.push_back({&pixels, detail::PlanPage(pixels, writing.form, changes), 0});
  TakeExtraSamples(writing.metadata, pages[0].plan);
  for (const TiffExtraPage& extra : extraPages) {
    Changes ofCopy;
    // A page without a type would count as one of its own.
    const uint32_t type = extra.subfileType == 0 ? 1 : extra.subfileType;
    pages.push_back({&extra.pixels, detail::PlanPage(extra.pixels, extra.form, ofCopy), type});
  }
  if (IsSeekable(stream)) return WritePages(pages, writing, stream, std::move(changes));
  // The header is completed last.
  TMemoryStream memory;
  WrittenPicture written = WritePages(pages, writing, memory, std::move(changes));
  stream.Write(memory.Bytes());
  return written;
}

WrittenPicture WriteTiff(const Pixels& pixels, const PictureWriting& writing, TStream& stream) {
  return WriteTiff(pixels, writing, {}, stream);
}

}  // namespace rasterkit
