#include <utility>

#include <rasterkit/codecs/rows/geotiff_tags.h>
#include <rasterkit/codecs/tiff/pages/found_pages.h>
#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/page_stream.h>
#include <rasterkit/codecs/tiff/rows/block_parts.h>
#include <rasterkit/codecs/tiff/rows/long_strips.h>
#include <rasterkit/codecs/tiff/rows/page_rows.h>
#include <rasterkit/codecs/tiff/rows/sample_decoder.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_directory.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using namespace detail;

/// A page that is opened for its pixels.
struct OpenedPage {
  std::unique_ptr<OpenedTiff> tiff;
  Resolution resolution;
  /// True if samples are read that become palette indexes of a raster.
  bool hasNarrowIndexes = false;
};

bool IsReadByRows(const TiffLayout& layout) {
  return layout.rows != TiffRowKind::library && layout.rows != TiffRowKind::ycbcrPlanes &&
         layout.rows != TiffRowKind::stretched;
}

OpenedPage OpenPage(TStream& stream, TiffHolding holding, CodecReport& report) {
  const uint64_t start = stream.Position();
  const TagReader reader(stream);
  const TagDirectory first = FirstDirectory(reader);
  const PageFacts facts = FactsOfPage(reader, first);
  RequireSides(facts);
  OpenedPage page;
  page.resolution = ResolutionOfPage(reader, first);
  stream.SetPosition(start);
  if (IsRasterPage(facts)) {
    page.tiff = OpenTiffFrame(stream, holding, report);
    return page;
  }
  if (facts.layout.model == ColorModel::palette && !facts.layout.palette) {
    throw FormatError("TIFF: the palette is missing");
  }
  const TiffDirectory directory(stream);
  RequirePixelTags(directory);
  const std::string noData = directory.Text(kNoDataTag);
  // Tags are read from the stream, too.
  stream.SetPosition(start);
  page.tiff = OpenTiffSamples(stream, facts, noData, holding, report);
  page.hasNarrowIndexes = facts.layout.model == ColorModel::palette && facts.layout.bands == 1;
  return page;
}

Pixels LikeOf(const OpenedPage& page) {
  if (!page.hasNarrowIndexes) {
    Pixels like = NewPixels(page.tiff->like, 1, 1);
    std::visit([&](auto& rows) { rows.resolution = page.resolution; }, like);
    return like;
  }
  Raster like = RasterOfIndexes(std::get<Samples>(page.tiff->like));
  like.resolution = page.resolution;
  return like;
}

class TiffPageRows : public RowReader {
 public:
  TiffPageRows(OpenedPage page, CodecReport noticed, int threads)
      : page_(std::move(page)),
        like_(LikeOf(page_)),
        noticed_(std::move(noticed)),
        parts_(page_.tiff->handle, page_.tiff->layout, page_.tiff->colors, page_.tiff->blanks,
               threads) {}

  /// Keeps the file of which the page is read.
  void Own(std::unique_ptr<PageStream> stream) { stream_ = std::move(stream); }
  uint64_t UnpackedBlocks() const { return parts_.UnpackedBlocks(); }

  int Width() const override { return static_cast<int>(Layout().width); }
  int Height() const override { return static_cast<int>(Layout().height); }
  RowAccess Access() const override {
    if (parts_.IsRising() || HasLongStrips(Layout())) return RowAccess::rising;
    return IsPlain() || Layout().grid.isTiled ? RowAccess::anyParts : RowAccess::anyRows;
  }
  int BlockRows() const override {
    const TiffBlockGrid& grid = Layout().grid;
    const bool isRising = parts_.IsRising() || HasLongStrips(Layout());
    if ((IsPlain() && !grid.isTiled) || isRising) return 1;
    return static_cast<int>(std::min(grid.height, Layout().height));
  }
  const Pixels& Like() const override { return like_; }
  void Read(int left, int top, Pixels& target) override;
  void Finish(CodecReport& report) override;

 private:
  const TiffLayout& Layout() const { return page_.tiff->layout; }
  void ReadPart(const TiffPart& part, const TiffTarget& target);
  bool IsPlain() const { return Layout().compression == COMPRESSION_NONE; }

  // The order of destruction is that of the last members first.
  std::unique_ptr<PageStream> stream_;
  OpenedPage page_;
  const Pixels like_;
  CodecReport noticed_;
  TiffParts parts_;
  std::unique_ptr<LongStrips> strips_;
};

void TiffPageRows::ReadPart(const TiffPart& part, const TiffTarget& target) {
  const TiffLayout& layout = Layout();
  const bool isWhole = part.height == layout.height;
  if (!HasLongStrips(layout) || isWhole) return parts_.Read(part, target);
  if (!strips_) {
    const OpenedTiff& tiff = *page_.tiff;
    strips_ = std::make_unique<LongStrips>(page_.tiff->source, layout, tiff.colors, tiff.blanks,
                                           parts_.Faults());
  }
  // Rows above were unpacked on the way.
  parts_.MarkRead({0, 0, layout.width, part.Bottom()});
  strips_->Read(part.top, part.height, target);
}

void TiffPageRows::Read(int left, int top, Pixels& target) {
  const int width = WidthOf(target), height = HeightOf(target);
  if (left < 0 || top < 0 || left > Width() - width || top > Height() - height) {
    throw RangeError("a part of a TIFF page must lie inside of it");
  }
  if (width == 0 || height == 0) return;
  const TiffPart part{static_cast<uint32_t>(left), static_cast<uint32_t>(top),
                      static_cast<uint32_t>(width), static_cast<uint32_t>(height)};
  if (page_.hasNarrowIndexes) {
    Samples indexes(std::get<Samples>(page_.tiff->like).Layout(), width, height);
    ReadPart(part, page_.tiff->TargetOf(indexes));
    CopyIndexes(indexes, std::get<Raster>(target));
    return;
  }
  ReadPart(part, page_.tiff->TargetOf(target));
  if (auto* raster = std::get_if<Raster>(&target)) raster->ClearPadding();
}

void TiffPageRows::Finish(CodecReport& report) {
  report.Append(std::exchange(noticed_, {}));
  ReportOutcome(parts_.Outcome(), Layout().height, report);
}

std::unique_ptr<TiffPageRows> OpenPageRows(TStream& stream, int threads) {
  CodecReport noticed;
  OpenedPage page = OpenPage(stream, TiffHolding::parts, noticed);
  if (!IsReadByRows(page.tiff->layout)) return nullptr;
  return std::make_unique<TiffPageRows>(std::move(page), std::move(noticed), threads);
}

/// Kinds of pixels that only libtiff or a look at all of them can convert.
Raster DecodeWhole(TStream& stream, const FrameOptions& options, CodecReport& report) {
  const uint64_t start = stream.Position();
  const TagReader reader(stream);
  const Resolution resolution = ResolutionOfPage(reader, FirstDirectory(reader));
  stream.SetPosition(start);
  Raster raster = DecodeTiff(stream, options, &report).rows;
  raster.resolution = resolution;
  return raster;
}

/// Opens a page for all of its rows. What is noticed before an error is reported, too.
OpenedPage OpenWhole(TStream& stream, CodecReport& noticed, CodecReport& report) {
  try {
    return OpenPage(stream, TiffHolding::whole, noticed);
  } catch (...) {
    report.Append(noticed);
    throw;
  }
}

Pixels PixelsOf(TStream& stream, const FrameOptions& options, CodecReport& report) {
  const uint64_t start = stream.Position();
  CodecReport noticed;
  OpenedPage page = OpenWhole(stream, noticed, report);
  if (!IsReadByRows(page.tiff->layout)) {
    stream.SetPosition(start);
    return DecodeWhole(stream, options, report);
  }
  report.Append(noticed);
  TiffPageRows reader(std::move(page), {}, options.threads);
  Pixels pixels = NewPixels(reader.Like(), reader.Width(), reader.Height());
  reader.Read(0, 0, pixels);
  reader.Finish(report);
  return pixels;
}

}  // namespace

namespace detail {

uint64_t UnpackedTiffBlocks(const RowReader& reader) {
  const auto* rows = dynamic_cast<const TiffPageRows*>(&reader);
  return rows == nullptr ? 0 : rows->UnpackedBlocks();
}

}  // namespace detail

std::unique_ptr<RowReader> OpenTiffRows(TStream& stream, const FrameOptions& options) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  return OpenPageRows(stream, options.threads);
}

std::unique_ptr<RowReader> OpenTiffExtraPageRows(TStream& stream, size_t index,
                                                 const FrameOptions& options) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  const TagReader reader(stream);
  const std::vector<ExtraPage> pages = ExtraPagesOf(reader);
  if (index >= pages.size()) throw RangeError("the TIFF page has no such smaller copy or mask");
  auto page = std::make_unique<PageStream>(stream, reader, pages[index].at);
  auto rows = OpenPageRows(*page, options.threads);
  if (rows) rows->Own(std::move(page));
  return rows;
}

Pixels DecodeTiffExtraPage(TStream& stream, size_t index, const FrameOptions& options,
                           CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  CodecReport ownReport;
  Seekable file(stream);
  const TagReader reader(file.Stream());
  const std::vector<ExtraPage> pages = ExtraPagesOf(reader);
  if (index >= pages.size()) throw RangeError("the TIFF page has no such smaller copy or mask");
  PageStream page(file.Stream(), reader, pages[index].at);
  return PixelsOf(page, options, report ? *report : ownReport);
}

Pixels DecodeTiffPixels(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  CodecReport ownReport;
  Seekable file(stream);
  return PixelsOf(file.Stream(), options, report ? *report : ownReport);
}

}  // namespace rasterkit
