#include <limits>
#include <optional>

#include <tiff.h>

#include <rasterkit/codecs/rows/geotiff_tags.h>
#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/page_stream.h>
#include <rasterkit/codecs/tiff/pages/sample_decoder.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_directory.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {

namespace {

using detail::PageFacts;
using detail::TagDirectory;
using detail::TagReader;

/// A stream that can be read at any place: pipes have no size and give their bytes only once.
class Seekable {
 public:
  explicit Seekable(TStream& stream) : stream_(&stream) {
    if (stream.Size() > stream.Position()) return;
    memory_.emplace(stream.ReadToEnd());
    stream_ = &*memory_;
  }
  TStream& Stream() { return *stream_; }

 private:
  TStream* stream_;
  std::optional<TMemoryStream> memory_;
};

TagDirectory FirstDirectory(const TagReader& reader) {
  auto directory = reader.Directory(reader.First());
  if (!directory) throw FormatError("TIFF: the first directory cannot be read");
  return std::move(*directory);
}

void RequireSides(const PageFacts& facts) {
  constexpr uint32_t kMost = std::numeric_limits<int>::max();
  if (facts.width > kMost || facts.height > kMost) {
    throw LimitError("TIFF picture of " + std::to_string(facts.width) + " x " +
                     std::to_string(facts.height) + " pixels: too wide or too high");
  }
}

PictureHeader HeaderOf(TStream& stream) {
  const TagReader reader(stream);
  const TagDirectory first = FirstDirectory(reader);
  const PageFacts facts = FactsOfPage(reader, first);
  RequireSides(facts);
  PictureHeader header;
  header.width = static_cast<int>(facts.width);
  header.height = static_cast<int>(facts.height);
  header.layout = facts.layout;
  header.form = facts.form;
  ReadPageMetadata(reader, first, header);
  const detail::PageFamily family = FamilyOf(reader, first);
  const auto* page = dynamic_cast<const detail::PageStream*>(&stream);
  const bool isOfFile = page && page->Pages() > 0;
  header.pages = isOfFile ? page->Pages() : family.pages;
  header.lostPages = isOfFile ? page->LostPages() : LostPages(family.end, family.pages);
  for (const auto* places : {&family.following, &family.below}) {
    for (const uint64_t at : *places) {
      const bool isMask = (reader.SubfileType(at) & FILETYPE_MASK) != 0;
      (isMask ? header.masks : header.smallerCopies)++;
    }
  }
  return header;
}

Pixels PixelsOf(TStream& stream, const FrameOptions& options, CodecReport& report) {
  const uint64_t start = stream.Position();
  const TagReader reader(stream);
  const TagDirectory first = FirstDirectory(reader);
  const PageFacts facts = FactsOfPage(reader, first);
  RequireSides(facts);
  stream.SetPosition(start);
  if (IsRasterPage(facts)) {
    Raster raster = DecodeTiff(stream, options, &report).rows;
    raster.resolution = ResolutionOfPage(reader, first);
    return raster;
  }
  if (facts.layout.model == ColorModel::palette && !facts.layout.palette) {
    throw FormatError("TIFF: the palette is missing");
  }
  const detail::TiffDirectory directory(stream);
  RequirePixelTags(directory);
  const std::string noData = directory.Text(detail::kNoDataTag);
  // Tags are read from the stream, too.
  stream.SetPosition(start);
  Samples samples = DecodeSamples(stream, facts, noData, options, report);
  samples.resolution = ResolutionOfPage(reader, first);
  if (facts.layout.model == ColorModel::palette && facts.layout.bands == 1) {
    Raster raster = detail::RasterOfIndexes(samples);
    raster.resolution = samples.resolution;
    return raster;
  }
  return samples;
}

struct ExtraPage {
  uint64_t at = 0;
  TiffExtraPageHeader header;
};

std::vector<ExtraPage> ExtraPagesOf(const TagReader& reader) {
  const detail::PageFamily family = FamilyOf(reader, FirstDirectory(reader));
  std::vector<ExtraPage> pages;
  for (const auto* places : {&family.following, &family.below}) {
    for (const uint64_t at : *places) {
      const auto directory = reader.Directory(at);
      if (!directory) continue;
      try {
        const PageFacts facts = FactsOfPage(reader, *directory);
        RequireSides(facts);
        const uint32_t type = reader.SubfileType(at);
        pages.push_back({at,
                         {static_cast<int>(facts.width), static_cast<int>(facts.height),
                          facts.layout, facts.form, type == 0 ? 1 : type}});
      } catch (const Error&) {
        // A directory that holds no picture: it is counted, but nothing can be made anew of it.
      }
    }
  }
  return pages;
}

}  // namespace

PictureHeader ReadTiffHeader(TStream& stream) {
  const LimitsScope limits;
  Seekable file(stream);
  return HeaderOf(file.Stream());
}

std::vector<TiffExtraPageHeader> ReadTiffExtraPages(TStream& stream) {
  const LimitsScope limits;
  Seekable file(stream);
  const TagReader reader(file.Stream());
  std::vector<TiffExtraPageHeader> headers;
  for (ExtraPage& page : ExtraPagesOf(reader)) headers.push_back(std::move(page.header));
  return headers;
}

Pixels DecodeTiffExtraPage(TStream& stream, size_t index, const FrameOptions& options,
                           CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  CodecReport ownReport;
  Seekable file(stream);
  const TagReader reader(file.Stream());
  const std::vector<ExtraPage> pages = ExtraPagesOf(reader);
  if (index >= pages.size()) throw RangeError("the TIFF page has no such smaller copy or mask");
  detail::PageStream page(file.Stream(), reader, pages[index].at);
  return PixelsOf(page, options, report ? *report : ownReport);
}

Pixels DecodeTiffPixels(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  CodecReport ownReport;
  Seekable file(stream);
  return PixelsOf(file.Stream(), options, report ? *report : ownReport);
}

}  // namespace rasterkit
