#include <algorithm>

#include <tiff.h>

#include <rasterkit/codecs/tiff/tiff_plan.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

/// Bytes of rows per strip: enough for good compression and large writes, few enough for the cache
/// and for work on several threads.
constexpr size_t kStripBytes = 256 << 10;

/// Deflate looks back 32 KiB. In strips of that size a photograph takes two thirds of the time of
/// large strips, for the same size. A plan becomes a third larger, but stays smaller than in the
/// usual strips of 8 KiB.
constexpr size_t kDeflateStripBytes = 32 << 10;

/// Level 6 takes a sixth more time for a photograph and saves nothing; for a plan it takes half
/// more and saves an eighth.
constexpr int kDeflateLevel = 4;

/// Bytes for header, tags, palette and profile.
constexpr uint64_t kSpareBytes = uint64_t{64} << 20;

void PlanIndexed(const Raster& raster, TiffPlan& plan) {
  const int bits = StoredBitsPerPixel(raster.Format());
  plan.bits = static_cast<uint16_t>(bits);
  plan.photometric = PHOTOMETRIC_MINISBLACK;
  if (HasColors(raster.palette, GrayPalette(1 << bits))) return;
  if (bits == 1 && IsWhiteAndBlack(raster.palette)) {
    plan.photometric = PHOTOMETRIC_MINISWHITE;
    return;
  }
  plan.photometric = PHOTOMETRIC_PALETTE;
  plan.colorMap = ColorMapOf(raster.palette, bits);
}

void PlanColors(const Raster& raster, bool holdsRgba, TiffPlan& plan) {
  plan.photometric = PHOTOMETRIC_RGB;
  plan.samples = 3;
  plan.order = TiffRowOrder::rgb;
  if (raster.Format() == pf24bit) return;
  plan.hasAlpha = holdsRgba || raster.alphaFormat == afDefined;
  if (plan.hasAlpha) plan.samples = 4;
  plan.order = holdsRgba       ? TiffRowOrder::same
               : plan.hasAlpha ? TiffRowOrder::rgba
                               : TiffRowOrder::rgbOf32;
}

bool IsBlackAndWhite(const TiffPlan& plan) {
  return plan.bits == 1 && plan.photometric != PHOTOMETRIC_PALETTE;
}

uint16_t CompressionOf(const TiffPlan& plan, TiffCompression compression) {
  switch (compression) {
    case TiffCompression::standard:
      return IsBlackAndWhite(plan) ? COMPRESSION_CCITTFAX4 : COMPRESSION_LZW;
    case TiffCompression::none:
      return COMPRESSION_NONE;
    case TiffCompression::lzw:
      return COMPRESSION_LZW;
    case TiffCompression::deflate:
      return COMPRESSION_ADOBE_DEFLATE;
    case TiffCompression::packBits:
      return COMPRESSION_PACKBITS;
    case TiffCompression::group4:
      if (plan.bits != 1) throw FormatError("TIFF: CCITT G4 compresses 1-bit pictures only");
      return COMPRESSION_CCITTFAX4;
  }
  return COMPRESSION_NONE;
}

/// Differences of palette indexes do not compress better: neighboring indexes have unrelated
/// colors.
uint16_t PredictorOf(const TiffPlan& plan) {
  const bool isPacked =
      plan.compression == COMPRESSION_LZW || plan.compression == COMPRESSION_ADOBE_DEFLATE;
  const bool isMeasured = plan.bits == 8 && plan.photometric != PHOTOMETRIC_PALETTE;
  return isPacked && isMeasured ? PREDICTOR_HORIZONTAL : PREDICTOR_NONE;
}

uint32_t RowsPerStrip(const TiffPlan& plan) {
  const bool isDeflate = plan.compression == COMPRESSION_ADOBE_DEFLATE;
  const size_t rows = (isDeflate ? kDeflateStripBytes : kStripBytes) / plan.rowBytes;
  return static_cast<uint32_t>(std::clamp<size_t>(rows, 1, size_t{plan.height}));
}

}  // namespace

bool HasColors(const HPALETTE& palette, const HPALETTE& others) {
  const auto isSame = [](const tagPALETTEENTRY& a, const tagPALETTEENTRY& b) {
    return EntryColor(a) == EntryColor(b);
  };
  const auto entries = palette.Entries(), wanted = others.Entries();
  return std::equal(entries.begin(), entries.end(), wanted.begin(), wanted.end(), isSame);
}

bool IsWhiteAndBlack(const HPALETTE& palette) {
  return palette.Count() == 2 && EntryColor(palette.Entry(0)) == clWhite &&
         EntryColor(palette.Entry(1)) == clBlack;
}

std::vector<uint16_t> ColorMapOf(const HPALETTE& palette, int bits) {
  const int count = 1 << bits;
  std::vector<uint16_t> map;
  map.reserve(3 * static_cast<size_t>(count));
  for (const auto channel :
       {&tagPALETTEENTRY::peRed, &tagPALETTEENTRY::peGreen, &tagPALETTEENTRY::peBlue}) {
    for (int i = 0; i < count; i++) {
      map.push_back(static_cast<uint16_t>(palette.Entry(i).*channel * 257));
    }
  }
  return map;
}

bool NeedsBigTiff(uint64_t rowBytes, uint64_t height, uint16_t compression) {
  // The worst case of each compression: LZW has codes of up to 12 bits per byte, G4 12 bits per two
  // pixels; the others add a few bytes per block.
  uint64_t growth = 16;
  if (compression == COMPRESSION_LZW) growth = 25;
  if (compression == COMPRESSION_CCITTFAX4) growth = 16 * 6 + 1;
  if (compression == COMPRESSION_PACKBITS || compression == COMPRESSION_ADOBE_DEFLATE) growth = 17;
  const uint64_t most = (uint64_t{1} << 32) - kSpareBytes;
  return rowBytes * growth / 16 > most / height;
}

TiffPlan PlanTiff(const Raster& raster, const TiffWriteOptions& options) {
  if (raster.Width() == 0 || raster.Height() == 0) {
    throw FormatError("TIFF: an empty picture cannot be written");
  }
  if (raster.Format() == pf15bit || raster.Format() == pf16bit) {
    throw FormatError("TIFF: pixels of 15 or 16 bits cannot be written");
  }
  TiffPlan plan;
  plan.width = static_cast<uint32_t>(raster.Width());
  plan.height = static_cast<uint32_t>(raster.Height());
  if (IsIndexed(raster.Format())) {
    PlanIndexed(raster, plan);
  } else {
    PlanColors(raster, options.exchangeRedBlue && raster.Format() == pf32bit, plan);
  }
  plan.compression = CompressionOf(plan, options.compression);
  plan.predictor = PredictorOf(plan);
  plan.rowBytes = (size_t{plan.width} * plan.bits * plan.samples + 7) / 8;
  plan.rowsPerStrip = RowsPerStrip(plan);
  if (plan.compression == COMPRESSION_ADOBE_DEFLATE) plan.level = kDeflateLevel;
  plan.isBig = NeedsBigTiff(plan.rowBytes, plan.height, plan.compression);
  return plan;
}

}  // namespace rasterkit::detail
