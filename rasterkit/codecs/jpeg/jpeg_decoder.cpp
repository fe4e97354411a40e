#include <algorithm>
#include <climits>
#include <iterator>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/codecs/jpeg/jpeg_reader.h>
#include <rasterkit/codecs/rows/cmyk_rows.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {

namespace {

using Bytes = std::span<const uint8_t>;
using detail::JpegErrors;
using detail::JpegLayout;
using detail::JpegReader;

/// Rows asked for in one call; the codec hands out fewer as it likes.
constexpr int rowsAtOnce = 16;

/// Pixels that all scans together may walk over. A scan costs time for every block even when it
/// holds a few bytes, so that a small file could ask for minutes; a real file of the largest size
/// within the default budget has a dozen.
constexpr uint64_t scanPixelBudget = uint64_t{1} << 34;
/// A scan of a tiny picture counts as this many pixels.
constexpr uint64_t smallestScan = 1 << 16;

/// Room for what the codec itself allocates beside coefficients; none of it grows with the height.
constexpr uint64_t codecSlack = 64 << 20;

void RequireSupported(const JpegFrame& frame) {
  if (frame.lossless) throw UnsupportedError("JPEG: lossless files are not supported");
  if (frame.hierarchical) throw UnsupportedError("JPEG: hierarchical files are not supported");
  if (frame.bits != 8)
    throw UnsupportedError(fmt::format("JPEG: {} bits a sample are not supported", frame.bits));
  if (frame.components != 1 && frame.components != 3 && frame.components != 4) {
    throw UnsupportedError(fmt::format("JPEG: {} components are not supported", frame.components));
  }
  if (frame.width == 0 || frame.height == 0)
    throw FormatError("JPEG: the frame header states no size");
}

uint64_t RoundUp(uint64_t value, int step) {
  const auto unit = static_cast<uint64_t>(step);
  return (value + unit - 1) / unit * unit;
}

/// Bytes of the coefficients that the library keeps when a picture comes in many scans.
uint64_t CoefficientBytes(const jpeg_decompress_struct& codec) {
  uint64_t blocks = 0;
  for (int i = 0; i < codec.num_components; i++) {
    const jpeg_component_info& component = codec.comp_info[i];
    blocks += RoundUp(component.width_in_blocks, component.h_samp_factor) *
              RoundUp(component.height_in_blocks, component.v_samp_factor);
  }
  return blocks * sizeof(JBLOCK);
}

Resolution ResolutionOf(const jpeg_decompress_struct& codec) {
  if (!codec.saw_JFIF_marker) return {};
  const double unit = codec.density_unit == 1 ? 1 : codec.density_unit == 2 ? 2.54 : 0;
  return {codec.X_density * unit, codec.Y_density * unit};
}

void ChooseOutput(jpeg_decompress_struct& codec) {
  codec.dct_method = JDCT_ISLOW;
  if (codec.num_components == 1) {
    codec.out_color_space = JCS_GRAYSCALE;
  } else if (codec.num_components == 3) {
    codec.out_color_space = JCS_EXT_BGR;
  } else {
    codec.out_color_space = JCS_CMYK;
  }
}

/// First row of which the file holds nothing; the height while no end was met. Throws when no whole
/// row is there.
int FirstMissingRow(const JpegReader& reader, const JpegLayout& layout) {
  const jpeg_decompress_struct& codec = reader.Codec();
  const auto height = static_cast<int64_t>(codec.output_height);
  const JpegErrors& errors = reader.Errors();
  if (!errors.dataEnded || (layout.manyScans && !errors.endedInFirstScan))
    return static_cast<int>(height);
  const int64_t bandRows = codec.max_v_samp_factor * DCTSIZE;
  if (errors.endedInRow == 0 && bandRows < height)
    throw FormatError("JPEG: the data end before the first rows");
  return static_cast<int>(std::min(height, (int64_t{errors.endedInRow} + 1) * bandRows));
}

/// Reads up to `rowsAtOnce` rows to the places given; returns their number.
int ReadRows(JpegReader& reader, uint8_t* first, size_t stride, int wanted) {
  JSAMPROW rows[rowsAtOnce];
  for (int i = 0; i < wanted; i++) rows[i] = first + static_cast<size_t>(i) * stride;
  int count = 0;
  jpeg_decompress_struct* codec = &reader.Codec();
  reader.Run([&] {
    count = static_cast<int>(jpeg_read_scanlines(codec, rows, static_cast<JDIMENSION>(wanted)));
  });
  return count;
}

/// Decodes into the raster as far as there is something; returns the first row that is not there.
int DecodeRows(JpegReader& reader, const JpegLayout& layout, Raster& raster) {
  const bool inks = reader.Codec().out_color_space == JCS_CMYK;
  const auto width = static_cast<size_t>(raster.Width());
  std::vector<uint8_t> inkRows(inks ? width * 4 * rowsAtOnce : 0);
  int y = 0;
  while (y < FirstMissingRow(reader, layout)) {
    const int wanted = std::min(rowsAtOnce, raster.Height() - y);
    const int count = inks ? ReadRows(reader, inkRows.data(), width * 4, wanted)
                           : ReadRows(reader, raster.Row(y), raster.Stride(), wanted);
    if (count == 0) throw FormatError("JPEG: the decoder delivers no more rows");
    for (int i = 0; inks && i < count; i++) {
      const uint8_t* inkRow = inkRows.data() + static_cast<size_t>(i) * width * 4;
      detail::CmykRowToBgr(inkRow, raster.Row(y + i), width, reader.Codec().saw_Adobe_marker != 0);
    }
    y += count;
  }
  return std::min(y, FirstMissingRow(reader, layout));
}

/// Looks for the end marker behind the rows. Rows that are sound stay valid whatever follows them;
/// where they are damaged as well, the file is beyond use.
void ReadEnd(JpegReader& reader, CodecReport& report) {
  jpeg_decompress_struct* codec = &reader.Codec();
  if (reader.Try([codec] { jpeg_finish_decompress(codec); })) return;
  if (reader.Errors().damaged) {
    throw FormatError("JPEG: the picture data and what follows them are damaged");
  }
  report.warnings.emplace_back("JPEG: what follows the picture data is damaged");
}

/// The file's profile when it describes the raster's pixels; null with a warning for one that is
/// broken.
ColorProfile ProfileOf(const JpegLayout& layout, CodecReport& report) {
  if (layout.profile.empty() || layout.frame.components == 4) return nullptr;
  std::vector<uint8_t> bytes = detail::JoinProfile(layout.profile);
  const auto space =
      layout.frame.components == 1 ? detail::ProfileSpace::gray : detail::ProfileSpace::rgb;
  if (!detail::ProfileFits(std::span(bytes), space)) {
    report.warnings.emplace_back(
        "JPEG: the colour profile is broken or of another kind and is left out");
    return nullptr;
  }
  return std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
}

void ReportEnd(const JpegReader& reader, const JpegLayout& layout, CodecReport& report) {
  const JpegErrors& errors = reader.Errors();
  errors.CopyTo(report);
  const jpeg_decompress_struct& codec = reader.Codec();
  if (layout.cutOff)
    report.warnings.emplace_back("JPEG: the file is cut off, its last scans are missing");
  if (!errors.dataEnded || (layout.manyScans && !errors.endedInFirstScan)) return;
  const uint64_t whole =
      uint64_t{errors.endedInRow} * static_cast<uint64_t>(codec.max_v_samp_factor) * DCTSIZE;
  report.warnings.push_back(fmt::format("JPEG: the data end early, {} of {} rows are there whole",
                                        std::min<uint64_t>(whole, codec.output_height),
                                        codec.output_height));
}

/// Checks what the picture will cost before anything of its size is allocated.
void RequireMemory(JpegReader& reader, const JpegLayout& layout, TPixelFormat format) {
  jpeg_decompress_struct& codec = reader.Codec();
  const uint64_t rowBytes = StrideBytes(codec.image_width, StoredBitsPerPixel(format));
  const uint64_t coefficients = layout.manyScans ? CoefficientBytes(codec) : 0;
  const uint64_t need = rowBytes * codec.image_height + coefficients;
  RequirePictureMemory(
      need, fmt::format("JPEG picture of {} x {} pixels", codec.image_width, codec.image_height));
  codec.mem->max_memory_to_use = static_cast<long>(std::min<uint64_t>(need + codecSlack, LONG_MAX));
  if (!layout.manyScans) return;
  const uint64_t pixels = std::max(uint64_t{codec.image_width} * codec.image_height, smallestScan);
  reader.LimitScans(static_cast<int>(scanPixelBudget / pixels));
}

}  // namespace

Raster DecodeJpeg(Bytes bytes, CodecReport* report) {
  const JpegLayout layout = detail::ReadJpegLayout(bytes);
  RequireSupported(layout.frame);
  JpegReader reader(bytes.first(layout.wholeBytes));
  jpeg_decompress_struct& codec = reader.Codec();
  ChooseOutput(codec);
  const TPixelFormat format = codec.num_components == 1 ? pf8bit : pf24bit;
  RequireMemory(reader, layout, format);

  reader.Run([&codec] { jpeg_start_decompress(&codec); });
  Raster raster(format, static_cast<int>(codec.output_width),
                static_cast<int>(codec.output_height));
  if (format == pf8bit) raster.palette = GrayPalette(256);
  detail::FillMissingRows(raster, DecodeRows(reader, layout, raster));
  raster.ClearPadding();

  CodecReport noticed;
  raster.resolution = ResolutionOf(codec);
  if (codec.output_scanline == codec.output_height) ReadEnd(reader, noticed);
  raster.profile = ProfileOf(layout, noticed);
  ReportEnd(reader, layout, noticed);
  if (report)
    std::move(noticed.warnings.begin(), noticed.warnings.end(),
              std::back_inserter(report->warnings));
  return raster;
}

}  // namespace rasterkit
