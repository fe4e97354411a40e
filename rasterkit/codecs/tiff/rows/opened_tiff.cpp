#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include <rasterkit/codecs/rows/frame_format.h>
#include <rasterkit/codecs/rows/geotiff_tags.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/codecs/tiff/rows/opened_tiff.h>
#include <rasterkit/codecs/tiff/tiff_directory.h>
#include <rasterkit/codecs/tiff/tiff_numbers.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/float24.h>

namespace rasterkit::detail {

namespace {

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

void ChooseInks(OpenedTiff& tiff, CodecReport& report) {
  if (tiff.layout.rows == TiffRowKind::lab) {
    tiff.colors.inks = InkTransform::OfLab();
  } else if (tiff.layout.rows == TiffRowKind::cmyk && !ProfileBytes(tiff.handle).empty()) {
    tiff.colors.inks = InkTransform::OfInks(ProfileBytes(tiff.handle));
    if (!tiff.colors.inks)
      report.warnings.emplace_back("TIFF: the color profile does not fit its inks and is ignored");
  }
}

void SetProperties(OpenedTiff& tiff, Raster& raster, CodecReport& report) {
  const TiffHandle& handle = tiff.handle;
  const TiffLayout& layout = tiff.layout;
  raster.resolution = ResolutionOf(handle);
  raster.profile = ProfileOf(handle, layout);
  if (layout.photometric == PHOTOMETRIC_PALETTE && layout.rows != TiffRowKind::library) {
    tiff.colors.entries = FileEntries(handle, layout);
  }
  if (layout.format == GUID_WICPixelFormat4bppGray) raster.palette = GrayPalette(16);
  if (layout.format == GUID_WICPixelFormat8bppGray) raster.palette = GrayPalette(256);
  if (IsIndexed(raster.Format()) && !tiff.colors.entries.empty()) {
    raster.palette = HPALETTE(tiff.colors.entries);
  }
  if (raster.Format() == pf32bit && layout.alphaAt) raster.alphaFormat = afDefined;
  ChooseInks(tiff, report);
}

TiffBlanks BlanksOf(const TiffLayout& layout, const std::string& noDataText) {
  TiffBlanks blanks;
  const bool isLowWhite = layout.isInverted || layout.photometric == PHOTOMETRIC_SEPARATED;
  if (isLowWhite) blanks.whiteByte = 0;
  const auto noData = ParseNumber(noDataText);
  if (!noData) return blanks;
  switch (layout.format) {
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
      if (layout.rows == TiffRowKind::float24) {
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

}  // namespace

TiffTarget OpenedTiff::TargetOf(Raster& raster) const {
  TiffTarget target;
  target.data = raster.Row(0);
  target.stride = raster.Stride();
  target.bitsPerPixel = StoredBitsPerPixel(raster.Format());
  target.blank = blank;
  target.blankBytes = blankBytes;
  return target;
}

TiffTarget OpenedTiff::TargetOf(Samples& samples) const {
  TiffTarget target;
  target.data = samples.Row(0);
  target.stride = samples.Stride();
  target.bitsPerPixel = static_cast<int>(8 * samples.PixelBytes());
  target.blank = blank;
  target.blankBytes = blankBytes;
  return target;
}

TiffTarget OpenedTiff::TargetOf(Pixels& pixels) const {
  return std::visit([&](auto& rows) { return TargetOf(rows); }, pixels);
}

void OpenedTiff::KeepWarnings(CodecReport& report) {
  for (const auto& texts : {handle.Messages().TakeErrors(), handle.Messages().TakeWarnings()}) {
    for (const std::string& text : texts) report.warnings.push_back("TIFF: " + text);
  }
}

std::unique_ptr<OpenedTiff> OpenTiffFrame(TStream& stream, TiffHolding holding,
                                          CodecReport& report) {
  const uint64_t start = stream.Position();
  const TiffDirectory directory(stream);
  stream.SetPosition(start);
  auto tiff = std::make_unique<OpenedTiff>(stream);
  RequirePixelTags(directory);
  PrepareTiff(tiff->handle);
  tiff->layout = ReadTiffLayout(tiff->handle);
  const TiffLayout& layout = tiff->layout;
  RequirePlausibleSize(tiff->handle, layout, holding);
  tiff->KeepWarnings(report);
  if (layout.isComplex) {
    report.warnings.emplace_back("TIFF: of complex numbers only the real parts are shown");
  }
  Raster like(RasterFormatOf(layout.format), 1, 1);
  SetProperties(*tiff, like, report);
  tiff->blanks = BlanksOf(layout, directory.Text(kNoDataTag));
  // All bits set: the greatest word, or NaN.
  tiff->blank.fill(WhiteByte(like));
  if (layout.format == GUID_WICPixelFormat16bppGrayFixedPoint) {
    constexpr int16_t kGreatest = std::numeric_limits<int16_t>::max();
    std::memcpy(tiff->blank.data(), &kGreatest, sizeof kGreatest);
  }
  tiff->like = std::move(like);
  return tiff;
}

}  // namespace rasterkit::detail
