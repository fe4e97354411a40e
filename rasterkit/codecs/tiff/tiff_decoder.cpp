#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>

#include <fmt/format.h>

#include <rasterkit/codecs/rows/frame_format.h>
#include <rasterkit/codecs/rows/geotiff_tags.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/codecs/rows/stretch_numbers.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_directory.h>
#include <rasterkit/codecs/tiff/tiff_library_rows.h>
#include <rasterkit/codecs/tiff/tiff_numbers.h>
#include <rasterkit/codecs/tiff/tiff_picture.h>
#include <rasterkit/codecs/tiff/tiff_ycbcr_planes.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/float24.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using namespace detail;

constexpr double kCentimetersPerInch = 2.54;
constexpr uint32_t kMostProfileBytes = 16 << 20;

Resolution ResolutionOf(const TiffHandle& handle) {
  float x = 0, y = 0;
  if (!TIFFGetField(handle.Tiff(), TIFFTAG_XRESOLUTION, &x) ||
      !TIFFGetField(handle.Tiff(), TIFFTAG_YRESOLUTION, &y)) {
    return {};
  }
  const int unit = handle.Field<uint16_t>(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  const bool isKnown = std::isfinite(x) && std::isfinite(y) && x > 0 && y > 0;
  if (!isKnown || (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER)) return {};
  const double factor = unit == RESUNIT_CENTIMETER ? kCentimetersPerInch : 1;
  return {x * factor, y * factor};
}

std::span<const uint8_t> ProfileBytes(const TiffHandle& handle) {
  uint32_t size = 0;
  const uint8_t* bytes = nullptr;
  if (!TIFFGetField(handle.Tiff(), TIFFTAG_ICCPROFILE, &size, &bytes) || size > kMostProfileBytes) {
    return {};
  }
  return {bytes, size};
}

/// The profile of the file if it describes the delivered pixels. Inks and the like are RGB by
/// then.
ColorProfile ProfileOf(const TiffHandle& handle, const TiffLayout& layout) {
  const bool isGray =
      layout.photometric == PHOTOMETRIC_MINISWHITE || layout.photometric == PHOTOMETRIC_MINISBLACK;
  const bool isColor = layout.photometric == PHOTOMETRIC_RGB ||
                       layout.photometric == PHOTOMETRIC_PALETTE ||
                       layout.photometric == PHOTOMETRIC_YCBCR;
  const std::span<const uint8_t> bytes = ProfileBytes(handle);
  const bool fits = (isGray && !layout.isConverted && ProfileFits(bytes, ProfileSpace::gray)) ||
                    (isColor && ProfileFits(bytes, ProfileSpace::rgb));
  if (!fits) return nullptr;
  return std::make_shared<const std::vector<uint8_t>>(bytes.begin(), bytes.end());
}

/// The color map of a palette file. Its words are bytes times 256 or times 257; some programs write
/// plain bytes.
std::vector<tagPALETTEENTRY> FileEntries(const TiffHandle& handle, const TiffLayout& layout) {
  const uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
  if (!TIFFGetField(handle.Tiff(), TIFFTAG_COLORMAP, &red, &green, &blue)) {
    throw FormatError("TIFF: the palette is missing");
  }
  const size_t count = size_t{1} << layout.bits;
  const auto isByte = [](uint16_t word) { return word < 256; };
  const bool isPlain = std::all_of(red, red + count, isByte) &&
                       std::all_of(green, green + count, isByte) &&
                       std::all_of(blue, blue + count, isByte);
  const int shift = isPlain ? 0 : 8;
  std::vector<tagPALETTEENTRY> entries(count);
  for (size_t i = 0; i < entries.size(); i++) {
    entries[i] = {static_cast<uint8_t>(red[i] >> shift), static_cast<uint8_t>(green[i] >> shift),
                  static_cast<uint8_t>(blue[i] >> shift), 0};
  }
  return entries;
}

/// The value of the tag "no data" as one sample of a grid.
template <typename T>
void SetSample(std::array<uint8_t, 8>& bytes, size_t& count, double number) {
  if constexpr (std::is_integral_v<T>) {
    if (!(number >= std::numeric_limits<T>::min() && number <= std::numeric_limits<T>::max())) {
      return;
    }
  }
  const auto value = static_cast<T>(number);
  std::memcpy(bytes.data(), &value, sizeof value);
  count = sizeof value;
}

std::optional<double> ParseNumber(const std::string& text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// Decodes one picture into a frame.
class FrameReader {
 public:
  FrameReader(TStream& stream, const FrameOptions& options, CodecReport& report)
      : source_(stream), directory_(stream), options_(options), report_(report) {}

  ImagingFrame Read() {
    TiffHandle handle(source_);
    RequirePixelTags(directory_);
    PrepareTiff(handle);
    layout_ = ReadTiffLayout(handle);
    RequirePlausibleSize(handle, layout_);
    KeepWarnings(handle);
    if (layout_.isComplex) Warn("of complex numbers only the real parts are shown");
    ImagingFrame frame;
    frame.format = layout_.format;
    frame.isConverted = layout_.isConverted;
    frame.rows = Raster(RasterFormatOf(layout_.format), static_cast<int>(layout_.width),
                        static_cast<int>(layout_.height));
    SetProperties(handle, frame.rows);
    ReadRows(handle, frame.rows);
    frame.rows.ClearPadding();
    return frame;
  }

 private:
  void SetProperties(TiffHandle& handle, Raster& raster);
  void ReadRows(TiffHandle& handle, Raster& raster);
  TiffOutcome ReadStretched(TiffHandle& handle, Raster& raster);
  TiffBlanks Blanks() const;
  TiffTarget Target(Raster& raster) const;
  void ChooseInks(TiffHandle& handle);
  void KeepWarnings(TiffHandle& handle);
  void Judge(const TiffOutcome& outcome) { ReportOutcome(outcome, layout_.height, report_); }
  void Warn(std::string text) { report_.warnings.push_back("TIFF: " + std::move(text)); }

  TiffSource source_;
  const TiffDirectory directory_;
  const FrameOptions& options_;
  CodecReport& report_;
  TiffLayout layout_;
  TiffColors colors_;
};

void FrameReader::KeepWarnings(TiffHandle& handle) {
  for (std::string& text : handle.Messages().TakeErrors()) Warn(std::move(text));
  for (std::string& text : handle.Messages().TakeWarnings()) Warn(std::move(text));
}

void FrameReader::SetProperties(TiffHandle& handle, Raster& raster) {
  raster.resolution = ResolutionOf(handle);
  raster.profile = ProfileOf(handle, layout_);
  if (layout_.photometric == PHOTOMETRIC_PALETTE && layout_.rows != TiffRowKind::library) {
    colors_.entries = FileEntries(handle, layout_);
  }
  if (layout_.format == GUID_WICPixelFormat4bppGray) raster.palette = GrayPalette(16);
  if (layout_.format == GUID_WICPixelFormat8bppGray) raster.palette = GrayPalette(256);
  if (IsIndexed(raster.Format()) && !colors_.entries.empty()) {
    raster.palette = HPALETTE(colors_.entries);
  }
  if (raster.Format() == pf32bit && layout_.alphaAt) raster.alphaFormat = afDefined;
  ChooseInks(handle);
}

void FrameReader::ChooseInks(TiffHandle& handle) {
  if (layout_.rows == TiffRowKind::lab) {
    colors_.inks = InkTransform::OfLab();
  } else if (layout_.rows == TiffRowKind::cmyk && !ProfileBytes(handle).empty()) {
    colors_.inks = InkTransform::OfInks(ProfileBytes(handle));
    if (!colors_.inks) Warn("the color profile does not fit its inks and is ignored");
  }
}

TiffBlanks FrameReader::Blanks() const {
  TiffBlanks blanks;
  const bool isLowWhite = layout_.isInverted || layout_.photometric == PHOTOMETRIC_SEPARATED;
  if (isLowWhite) blanks.whiteByte = 0;
  const auto noData = ParseNumber(directory_.Text(detail::kNoDataTag));
  if (!noData) return blanks;
  switch (layout_.format) {
    case GUID_WICPixelFormat8bppGray:
      SetSample<uint8_t>(blanks.sparse, blanks.sparseBytes, *noData);
      break;
    case GUID_WICPixelFormat16bppGray:
      SetSample<uint16_t>(blanks.sparse, blanks.sparseBytes, *noData);
      break;
    case GUID_WICPixelFormat16bppGrayFixedPoint:
      SetSample<int16_t>(blanks.sparse, blanks.sparseBytes, *noData);
      break;
    case GUID_WICPixelFormat32bppGrayFloat:
      if (layout_.rows == TiffRowKind::float24) {
        blanks.sparseBytes = 3;
        StoreTriple(FloatToFloat24(*noData), blanks.sparse.data());
      } else {
        SetSample<float>(blanks.sparse, blanks.sparseBytes, *noData);
      }
      break;
    default:
      break;
  }
  return blanks;
}

TiffTarget FrameReader::Target(Raster& raster) const {
  TiffTarget target;
  target.data = raster.Row(0);
  target.stride = raster.Stride();
  target.bitsPerPixel = StoredBitsPerPixel(raster.Format());
  // All bits set: the greatest word, or NaN.
  target.blank.fill(WhiteByte(raster));
  if (layout_.format == GUID_WICPixelFormat16bppGrayFixedPoint) {
    constexpr int16_t kGreatest = std::numeric_limits<int16_t>::max();
    std::memcpy(target.blank.data(), &kGreatest, sizeof kGreatest);
  }
  return target;
}

TiffOutcome FrameReader::ReadStretched(TiffHandle& handle, Raster& raster) {
  const size_t stride = sizeof(double) * layout_.width;
  PixelMemory numbers(stride * layout_.height);
  TiffTarget target;
  target.data = numbers.Data();
  target.stride = stride;
  target.bitsPerPixel = 64;
  target.blank.fill(0xFF);  // NaN
  TiffOutcome outcome =
      ReadTiffBlocks(handle, layout_, colors_, Blanks(), target, options_.threads);
  const NumberRange range = StretchNumbers(reinterpret_cast<const double*>(numbers.Data()), raster);
  if (range.IsKnown()) {
    Warn(fmt::format("numbers from {:g} to {:g} are shown as black to white",
                     layout_.isInverted ? -range.least : range.least,
                     layout_.isInverted ? -range.greatest : range.greatest));
  }
  return outcome;
}

void FrameReader::ReadRows(TiffHandle& handle, Raster& raster) {
  const TiffTarget target = Target(raster);
  switch (layout_.rows) {
    case TiffRowKind::library:
      return Judge(ReadTiffByLibrary(handle, layout_, target));
    case TiffRowKind::ycbcrPlanes:
      return Judge(ReadTiffYcbcrPlanes(handle, layout_, Blanks(), target));
    case TiffRowKind::stretched:
      return Judge(ReadStretched(handle, raster));
    default:
      return Judge(ReadTiffBlocks(handle, layout_, colors_, Blanks(), target, options_.threads));
  }
}

}  // namespace

ImagingFrame DecodeTiff(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  CodecReport ownReport;
  CodecReport& noticed = report ? *report : ownReport;
  if (stream.Size() > stream.Position()) return FrameReader(stream, options, noticed).Read();
  // Pipes have no size and give their bytes only once.
  TMemoryStream memory(stream.ReadToEnd());
  return FrameReader(memory, options, noticed).Read();
}

}  // namespace rasterkit
