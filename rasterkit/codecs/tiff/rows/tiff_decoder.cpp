#include <fmt/format.h>

#include <rasterkit/codecs/rows/stretch_numbers.h>
#include <rasterkit/codecs/tiff/rows/block_parts.h>
#include <rasterkit/codecs/tiff/rows/opened_tiff.h>
#include <rasterkit/codecs/tiff/rows/tiff_library_rows.h>
#include <rasterkit/codecs/tiff/rows/tiff_ycbcr_planes.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using namespace detail;

TiffOutcome ReadStretched(OpenedTiff& tiff, Raster& raster, int threads, CodecReport& report) {
  const TiffLayout& layout = tiff.layout;
  const size_t stride = sizeof(double) * layout.width;
  PixelMemory numbers(stride * layout.height);
  TiffTarget target;
  target.data = numbers.Data();
  target.stride = stride;
  target.bitsPerPixel = 64;
  target.blank.fill(0xFF);  // NaN
  TiffOutcome outcome =
      ReadTiffBlocks(tiff.handle, layout, tiff.colors, tiff.blanks, target, threads);
  const NumberRange range = StretchNumbers(reinterpret_cast<const double*>(numbers.Data()), raster);
  if (range.IsKnown()) {
    report.warnings.push_back(
        fmt::format("TIFF: numbers from {:g} to {:g} are shown as black to white",
                    layout.isInverted ? -range.least : range.least,
                    layout.isInverted ? -range.greatest : range.greatest));
  }
  return outcome;
}

TiffOutcome ReadRows(OpenedTiff& tiff, Raster& raster, int threads, CodecReport& report) {
  const TiffTarget target = tiff.TargetOf(raster);
  switch (tiff.layout.rows) {
    case TiffRowKind::library:
      return ReadTiffByLibrary(tiff.handle, tiff.layout, target);
    case TiffRowKind::ycbcrPlanes:
      return ReadTiffYcbcrPlanes(tiff.handle, tiff.layout, tiff.blanks, target);
    case TiffRowKind::stretched:
      return ReadStretched(tiff, raster, threads, report);
    default:
      return ReadTiffBlocks(tiff.handle, tiff.layout, tiff.colors, tiff.blanks, target, threads);
  }
}

ImagingFrame DecodeFrame(TStream& stream, const FrameOptions& options, CodecReport& report) {
  const auto tiff = OpenTiffFrame(stream, TiffHolding::whole, report);
  const TiffLayout& layout = tiff->layout;
  ImagingFrame frame;
  frame.format = layout.format;
  frame.isConverted = layout.isConverted;
  const auto& like = std::get<Raster>(tiff->like);
  frame.rows =
      Raster(like.Format(), static_cast<int>(layout.width), static_cast<int>(layout.height));
  frame.rows.CopyProperties(like);
  ReportOutcome(ReadRows(*tiff, frame.rows, options.threads, report), layout.height, report);
  frame.rows.ClearPadding();
  return frame;
}

}  // namespace

ImagingFrame DecodeTiff(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  CodecReport ownReport;
  CodecReport& noticed = report ? *report : ownReport;
  if (stream.Size() > stream.Position()) return DecodeFrame(stream, options, noticed);
  // Pipes have no size and give their bytes only once.
  TMemoryStream memory(stream.ReadToEnd());
  return DecodeFrame(memory, options, noticed);
}

}  // namespace rasterkit
