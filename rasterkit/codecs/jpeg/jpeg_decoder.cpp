#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/codecs/jpeg/jpeg_limits.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_reader.h>
#include <rasterkit/codecs/jpeg/missing_scans.h>
#include <rasterkit/codecs/rows/cmyk_rows.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit {

namespace {

using Bytes = std::span<const uint8_t>;
using detail::JpegErrors;
using detail::JpegLayout;
using detail::JpegReader;

/// Rows per call; the codec may give fewer.
constexpr int kRowsAtOnce = 16;

void RequireSupported(const JpegFrame& frame) {
  detail::RequireSupportedCoding(frame);
  if (frame.components != 1 && frame.components != 3 && frame.components != 4) {
    throw UnsupportedError(fmt::format("JPEG: {} components are not supported", frame.components));
  }
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

/// The first row without data; the height if the data are complete. Throws if no complete row is
/// there.
int FirstMissingRow(const JpegReader& reader, const JpegLayout& layout) {
  const jpeg_decompress_struct& codec = reader.Codec();
  const auto height = static_cast<int64_t>(codec.output_height);
  const JpegErrors& errors = reader.Errors();
  if (!errors.dataEnded || (layout.manyScans && !errors.endedInFirstScan)) {
    return static_cast<int>(height);
  }
  const int64_t bandRows = codec.max_v_samp_factor * DCTSIZE;
  if (errors.endedInRow == 0 && bandRows < height) {
    throw FormatError("JPEG: the data end before the first rows");
  }
  return static_cast<int>(std::min(height, (int64_t{errors.endedInRow} + 1) * bandRows));
}

/// Reads up to `kRowsAtOnce` rows to the given places; returns their number.
int ReadRows(JpegReader& reader, uint8_t* first, size_t stride, int wanted) {
  JSAMPROW rows[kRowsAtOnce];
  for (int i = 0; i < wanted; i++) rows[i] = first + static_cast<size_t>(i) * stride;
  int count = 0;
  jpeg_decompress_struct* codec = &reader.Codec();
  reader.Run([&] {
    count = static_cast<int>(jpeg_read_scanlines(codec, rows, static_cast<JDIMENSION>(wanted)));
  });
  return count;
}

/// Decodes the available rows into the raster; returns the first missing one.
int DecodeRows(JpegReader& reader, const JpegLayout& layout, Raster& raster) {
  const bool inks = reader.Codec().out_color_space == JCS_CMYK;
  const auto width = static_cast<size_t>(raster.Width());
  std::vector<uint8_t> inkRows(inks ? width * 4 * kRowsAtOnce : 0);
  int y = 0;
  while (y < FirstMissingRow(reader, layout)) {
    RequireTime();
    const int wanted = std::min(kRowsAtOnce, raster.Height() - y);
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

/// Reads the end marker after the rows. Intact rows stay valid regardless of what follows them; if
/// the rows are damaged too, the file is refused.
void ReadEnd(JpegReader& reader, CodecReport& report) {
  jpeg_decompress_struct* codec = &reader.Codec();
  if (reader.Try([codec] { jpeg_finish_decompress(codec); })) return;
  if (reader.Errors().damaged) {
    throw FormatError("JPEG: the picture data and what follows them are damaged");
  }
  report.warnings.emplace_back("JPEG: what follows the picture data is damaged");
}

/// The profile of the file if it describes the pixels of the raster; null and a warning for an
/// invalid profile.
ColorProfile ProfileOf(const JpegLayout& layout, CodecReport& report) {
  if (layout.profile.empty() || layout.frame.components == 4) return nullptr;
  std::vector<uint8_t> bytes = detail::JoinProfile(layout.profile);
  const auto space =
      layout.frame.components == 1 ? detail::ProfileSpace::gray : detail::ProfileSpace::rgb;
  if (!detail::ProfileFits(std::span(bytes), space)) {
    report.warnings.emplace_back(
        "JPEG: the color profile is invalid or of another kind and is ignored");
    return nullptr;
  }
  return std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
}

void ReportEnd(const JpegReader& reader, const JpegLayout& layout, CodecReport& report) {
  const JpegErrors& errors = reader.Errors();
  errors.CopyTo(report);
  const jpeg_decompress_struct& codec = reader.Codec();
  if (layout.cutOff) {
    report.AddDamage("JPEG: the file is cut off, its last scans are missing");
  }
  if (!errors.dataEnded || (layout.manyScans && !errors.endedInFirstScan)) return;
  const uint64_t whole =
      uint64_t{errors.endedInRow} * static_cast<uint64_t>(codec.max_v_samp_factor) * DCTSIZE;
  report.AddDamage(fmt::format("JPEG: the data end early, {} of {} rows are complete",
                               std::min<uint64_t>(whole, codec.output_height),
                               codec.output_height));
}

/// Checks the memory and time for the picture before anything of its size is allocated.
void RequireMemory(JpegReader& reader, const JpegLayout& layout, TPixelFormat format,
                   size_t fileBytes) {
  jpeg_decompress_struct& codec = reader.Codec();
  const uint64_t rowBytes = StrideBytes(codec.image_width, StoredBitsPerPixel(format));
  const uint64_t coefficients = layout.manyScans ? detail::CoefficientBytes(codec) : 0;
  const uint64_t need = rowBytes * codec.image_height + coefficients;
  const std::string what =
      fmt::format("JPEG picture of {} x {} pixels", codec.image_width, codec.image_height);
  RequirePicture(codec.image_width, codec.image_height, need, what);
  if (!layout.frame.arithmetic) {
    detail::RequirePlausible({need, detail::StoredBlocks(codec), fileBytes, detail::kBlocksPerByte},
                             what);
  }
  codec.mem->max_memory_to_use =
      static_cast<long>(std::min<uint64_t>(need + detail::kCodecSlack, LONG_MAX));
  if (layout.manyScans) reader.LimitScans(detail::MostScans(codec));
}

/// White of a file of inks.
void FillMissingRows(Samples& inks, int first) {
  for (int y = first; y < inks.Height(); y++) std::memset(inks.Row(y), 0, inks.Stride());
}

/// Inks as the file has them, 0 for no ink: with an Adobe marker they are stored inverted. The
/// press profile of the file does not take part in showing them, so the samples have none.
Samples DecodeInks(JpegReader& reader, const JpegLayout& layout) {
  const jpeg_decompress_struct& codec = reader.Codec();
  PixelLayout inks;
  inks.bands = 4;
  inks.model = ColorModel::cmyk;
  Samples samples(inks, static_cast<int>(codec.output_width),
                  static_cast<int>(codec.output_height));
  int y = 0;
  while (y < FirstMissingRow(reader, layout)) {
    RequireTime();
    const int wanted = std::min(kRowsAtOnce, samples.Height() - y);
    const int count = ReadRows(reader, samples.Row(y), samples.Stride(), wanted);
    if (count == 0) throw FormatError("JPEG: the decoder delivers no more rows");
    if (codec.saw_Adobe_marker != 0) {
      uint8_t* first = samples.Row(y);
      std::transform(first, first + samples.Stride() * static_cast<size_t>(count), first,
                     [](uint8_t value) { return static_cast<uint8_t>(~value); });
    }
    y += count;
  }
  FillMissingRows(samples, std::min(y, FirstMissingRow(reader, layout)));
  return samples;
}

Raster DecodeColors(JpegReader& reader, const JpegLayout& layout, TPixelFormat format) {
  const jpeg_decompress_struct& codec = reader.Codec();
  Raster raster(format, static_cast<int>(codec.output_width),
                static_cast<int>(codec.output_height));
  if (format == pf8bit) raster.palette = GrayPalette(256);
  detail::FillMissingRows(raster, DecodeRows(reader, layout, raster));
  raster.ClearPadding();
  return raster;
}

/// Decodes to a raster. `asStored` gives inks as samples and reports missing scans.
Pixels Decode(Bytes bytes, bool asStored, CodecReport* report) {
  const LimitsScope limits;
  const JpegLayout layout = detail::ReadJpegLayout(bytes);
  RequireSupported(layout.frame);
  JpegReader reader(bytes.first(layout.wholeBytes));
  jpeg_decompress_struct& codec = reader.Codec();
  ChooseOutput(codec);
  const bool givesInks = asStored && codec.num_components == 4;
  const TPixelFormat format = codec.num_components == 1 ? pf8bit : pf24bit;
  RequireMemory(reader, layout, givesInks ? pf32bit : format, bytes.size());

  const MemoryShare coefficients(layout.manyScans ? detail::CoefficientBytes(codec) : 0);
  reader.Run([&codec] { jpeg_start_decompress(&codec); });
  Pixels pixels =
      givesInks ? Pixels(DecodeInks(reader, layout)) : Pixels(DecodeColors(reader, layout, format));

  std::string missing;
  // The library decodes without a word what is there, and forgets it when it finishes.
  if (asStored && layout.manyScans) missing = detail::MissingScans(codec);
  CodecReport noticed;
  if (codec.output_scanline == codec.output_height) ReadEnd(reader, noticed);
  if (auto* inks = std::get_if<Samples>(&pixels)) {
    inks->resolution = ResolutionOf(codec);
  } else {
    std::get<Raster>(pixels).resolution = ResolutionOf(codec);
    std::get<Raster>(pixels).profile = ProfileOf(layout, noticed);
  }
  ReportEnd(reader, layout, noticed);
  if (!missing.empty() && noticed.damage.empty()) noticed.AddDamage(std::move(missing));
  if (report) report->Append(noticed);
  return pixels;
}

}  // namespace

Raster DecodeJpeg(Bytes bytes, CodecReport* report) {
  return std::get<Raster>(Decode(bytes, false, report));
}

Pixels DecodeJpegPixels(Bytes bytes, CodecReport* report) {
  return Decode(bytes, true, report);
}

}  // namespace rasterkit
