#include <algorithm>
#include <string>

#include <fmt/format.h>
#include <tiffio.h>

#include <rasterkit/codecs/tiff/pages/form_choice.h>
#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>

namespace rasterkit {

namespace detail {

namespace {

/// Bytes of rows per strip: enough for good compression and large writes, few enough for the cache
/// and for work on several threads. Deflate looks back 32 KiB: longer strips take more time for the
/// same size.
constexpr uint64_t kStripBytes = 256 << 10, kDeflateStripBytes = 32 << 10;

/// Level 6 takes a sixth more time for a photograph and saves nothing.
constexpr int kDeflateLevel = 4;

constexpr int kUsualQuality = 90;
constexpr uint32_t kTileUnit = 16;
/// A codec that needs more memory for a block than this gets smaller ones.
constexpr uint64_t kMostBlockBytes = uint64_t{1} << 30;

bool TakesPredictor(int compression) {
  return compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE ||
         compression == COMPRESSION_ZSTD || compression == COMPRESSION_LZMA;
}

/// Chooses one field after the other; later ones depend on earlier ones.
class FormChooser {
 public:
  FormChooser(const TiffForm& wanted, PagePlan& plan, Changes& changes)
      : wanted_(wanted), plan_(plan), form_(plan.form), changes_(changes) {}

  void Choose() {
    form_.isBigEndian = wanted_.isBigEndian;
    form_.isBigTiff = wanted_.isBigTiff;
    form_.fillOrder =
        wanted_.fillOrder == FILLORDER_LSB2MSB ? FILLORDER_LSB2MSB : FILLORDER_MSB2LSB;
    form_.isPlanar = wanted_.isPlanar && plan_.samples > 1;
    ChooseCompression();
    ChooseJpeg();
    ChoosePredictor();
    if (wanted_.tileWidth > 0 && wanted_.tileHeight > 0) {
      ChooseTiles();
    } else {
      ChooseStrips();
    }
  }

 private:
  void ChooseCompression();
  std::string WhyNot(int compression) const;
  std::string WhyNoJpeg() const;
  void ChooseJpeg();
  void ChoosePredictor();
  void ChooseTiles();
  void ChooseStrips();

  const TiffForm& wanted_;
  PagePlan& plan_;
  TiffForm& form_;
  Changes& changes_;
};

std::string FormChooser::WhyNoJpeg() const {
  const bool isKind =
      form_.photometric == PHOTOMETRIC_MINISBLACK || form_.photometric == PHOTOMETRIC_MINISWHITE ||
      form_.photometric == PHOTOMETRIC_RGB || form_.photometric == PHOTOMETRIC_SEPARATED;
  if (plan_.bits != 8 || plan_.sampleFormat != SAMPLEFORMAT_UINT) {
    return "holds samples of 8 bits only";
  }
  if (!isKind) return "holds no pixels of this kind";
  if (!form_.isPlanar && plan_.samples > 4) return "holds at most 4 samples of a pixel";
  return {};
}

/// The reason why the pixels cannot be compressed that way; empty if they can.
std::string FormChooser::WhyNot(int compression) const {
  const bool isWebp = compression == COMPRESSION_WEBP;
  switch (compression) {
    case COMPRESSION_NONE:
    case COMPRESSION_LZW:
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_PACKBITS:
      return {};
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTFAX3:
    case COMPRESSION_CCITTFAX4:
      return plan_.bits == 1 && plan_.samples == 1 ? "" : "holds black and white only";
    case COMPRESSION_JPEG:
      return WhyNoJpeg();
    case COMPRESSION_ZSTD:
    case COMPRESSION_LZMA:
    case COMPRESSION_WEBP:
      if (!TIFFIsCODECConfigured(static_cast<uint16_t>(compression))) return "is not supported";
      if (isWebp && (plan_.bits != 8 || plan_.samples != 3 || form_.isPlanar ||
                     form_.photometric != PHOTOMETRIC_RGB)) {
        return "holds colors of 8 bits only";
      }
      return {};
    default:
      return "cannot be written";
  }
}

void FormChooser::ChooseCompression() {
  form_.compression = wanted_.compression;
  if (form_.compression == COMPRESSION_DEFLATE) {
    form_.compression = COMPRESSION_ADOBE_DEFLATE;
    changes_.Note("TIFF: the old number of Deflate becomes the registered one");
  }
  if (form_.compression == COMPRESSION_CCITTRLEW) {
    form_.compression = COMPRESSION_CCITTRLE;
    changes_.Note("TIFF: CCITT RLE of whole words becomes that of whole bytes");
  }
  const std::string reason = WhyNot(form_.compression);
  if (!reason.empty()) {
    changes_.Note(fmt::format("TIFF: {} {}; written with Deflate",
                              TiffCompressionName(form_.compression), reason));
    form_.compression = COMPRESSION_ADOBE_DEFLATE;
  }
  if (form_.compression == COMPRESSION_ADOBE_DEFLATE) plan_.level = kDeflateLevel;
}

void FormChooser::ChooseJpeg() {
  if (form_.compression != COMPRESSION_JPEG) {
    if (wanted_.photometric == PHOTOMETRIC_YCBCR && form_.photometric == PHOTOMETRIC_RGB &&
        form_.compression == wanted_.compression) {
      changes_.Note("TIFF: YCbCr without JPEG is written as RGB");
    }
    return;
  }
  form_.jpegQuality = wanted_.jpegQuality > 0 ? std::min(wanted_.jpegQuality, 100) : kUsualQuality;
  const bool isColor =
      form_.photometric == PHOTOMETRIC_RGB && plan_.samples == 3 && !form_.isPlanar;
  if (!isColor || wanted_.photometric != PHOTOMETRIC_YCBCR) return;
  form_.photometric = PHOTOMETRIC_YCBCR;
  const auto valid = [](int factor) { return factor == 2 || factor == 4 ? factor : 1; };
  form_.subsamplingX = valid(wanted_.subsamplingX);
  form_.subsamplingY = valid(wanted_.subsamplingY);
}

void FormChooser::ChoosePredictor() {
  form_.predictor = PREDICTOR_NONE;
  if (wanted_.predictor == PREDICTOR_NONE || !TakesPredictor(form_.compression)) return;
  const bool isFloat = plan_.sampleFormat == SAMPLEFORMAT_IEEEFP;
  const bool isWhole = plan_.bits == 8 || plan_.bits == 16 || plan_.bits == 32 || plan_.bits == 64;
  if (wanted_.predictor == PREDICTOR_FLOATINGPOINT && isFloat) {
    form_.predictor = PREDICTOR_FLOATINGPOINT;
  } else if (isWhole) {
    form_.predictor = PREDICTOR_HORIZONTAL;
  }
}

void FormChooser::ChooseTiles() {
  // The format requires multiples of 16. A tile far larger than the picture wastes its area.
  const auto fitting = [](uint32_t side, uint32_t picture) {
    const uint64_t most = std::max<uint64_t>((uint64_t{picture} + kTileUnit - 1) / kTileUnit, 64);
    const uint64_t units = std::min<uint64_t>((uint64_t{side} + kTileUnit - 1) / kTileUnit, most);
    return static_cast<uint32_t>(units * kTileUnit);
  };
  form_.tileWidth = fitting(wanted_.tileWidth, plan_.width);
  form_.tileHeight = fitting(wanted_.tileHeight, plan_.height);
  if (plan_.BlockRowBytes() * form_.tileHeight > kMostBlockBytes) {
    form_.tileWidth = form_.tileHeight = 256;
  }
  if (form_.tileWidth != wanted_.tileWidth || form_.tileHeight != wanted_.tileHeight) {
    changes_.Note(fmt::format("TIFF: tiles of {} x {} instead of {} x {}", form_.tileWidth,
                              form_.tileHeight, wanted_.tileWidth, wanted_.tileHeight));
  }
}

void FormChooser::ChooseStrips() {
  const uint64_t rowBytes = plan_.BlockRowBytes();
  const uint64_t usual =
      form_.compression == COMPRESSION_ADOBE_DEFLATE ? kDeflateStripBytes : kStripBytes;
  uint64_t rows = wanted_.rowsPerStrip;
  if (rows == 0) rows = std::max<uint64_t>(1, usual / rowBytes);
  if (rows * rowBytes > kMostBlockBytes) rows = std::max<uint64_t>(1, kMostBlockBytes / rowBytes);
  constexpr uint64_t kMostStrips = uint64_t{1} << 24;
  rows = std::max(rows, uint64_t{plan_.height} * plan_.Planes() / kMostStrips + 1);
  if (form_.compression == COMPRESSION_JPEG && rows < plan_.height) {
    // Strips end where blocks of 8 x 8 samples end.
    const auto unit = static_cast<uint64_t>(8 * form_.subsamplingY);
    rows = (rows + unit - 1) / unit * unit;
  }
  form_.rowsPerStrip = static_cast<uint32_t>(std::min<uint64_t>(rows, plan_.height));
  const uint32_t wanted = std::min(wanted_.rowsPerStrip, plan_.height);
  if (wanted > 0 && form_.rowsPerStrip != wanted) {
    changes_.Note(fmt::format("TIFF: strips of {} rows instead of {}", form_.rowsPerStrip, wanted));
  }
}

}  // namespace

void ChooseForm(const TiffForm& wanted, PagePlan& plan, Changes& changes) {
  FormChooser(wanted, plan, changes).Choose();
}

}  // namespace detail

namespace {

/// The palette of bitmap files with one bit per pixel that are no more than black and white.
bool IsBlackAndWhite(const HPALETTE& palette) {
  const tagPALETTEENTRY black{0, 0, 0, 0}, white{255, 255, 255, 0};
  return palette.Count() == 2 && palette.Entry(0) == black && palette.Entry(1) == white;
}

}  // namespace

TiffForm FormFor(TiffCompression compression, const PixelLayout& layout) {
  const bool isGray = layout.model != ColorModel::palette || IsBlackAndWhite(layout.palette);
  const bool isBilevel = layout.bits == 1 && layout.bands == 1 && isGray;
  TiffForm form;
  // The samples decide; see PlanPage.
  form.photometric = -1;
  switch (compression) {
    case TiffCompression::standard:
      form.compression = isBilevel ? COMPRESSION_CCITTFAX4 : COMPRESSION_LZW;
      break;
    case TiffCompression::none:
      form.compression = COMPRESSION_NONE;
      break;
    case TiffCompression::lzw:
      form.compression = COMPRESSION_LZW;
      break;
    case TiffCompression::deflate:
      form.compression = COMPRESSION_ADOBE_DEFLATE;
      break;
    case TiffCompression::packBits:
      form.compression = COMPRESSION_PACKBITS;
      break;
    case TiffCompression::group4:
      form.compression = COMPRESSION_CCITTFAX4;
      break;
  }
  const bool isPacked =
      form.compression == COMPRESSION_LZW || form.compression == COMPRESSION_ADOBE_DEFLATE;
  const bool isNumber = layout.bits >= 8 && layout.model != ColorModel::palette;
  if (isPacked && isNumber) {
    const bool isFloat = layout.type == NumberType::float16 || layout.type == NumberType::float32 ||
                         layout.type == NumberType::float64;
    form.predictor = isFloat ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL;
  }
  return form;
}

}  // namespace rasterkit
