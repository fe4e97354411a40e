#include <algorithm>

#include <fmt/format.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

constexpr uint64_t kMostProfileBytes = 16 << 20;
constexpr uint32_t kMostRows = UINT32_MAX;
/// Where the tables of a strip without common tables begin.
constexpr uint64_t kJpegHeadBytes = 4096;

bool IsFax(int compression) {
  return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW ||
         compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

/// Reads the tags of one directory.
class FactsReader {
 public:
  FactsReader(const TagReader& reader, const TagDirectory& directory)
      : reader_(reader), directory_(directory) {}

  PageFacts Read() {
    facts_.width = Narrow(reader_.Integer(directory_, TIFFTAG_IMAGEWIDTH, 0));
    facts_.height = Narrow(reader_.Integer(directory_, TIFFTAG_IMAGELENGTH, 0));
    if (facts_.width == 0 || facts_.height == 0) {
      throw FormatError("TIFF: the first directory has no size");
    }
    ReadForm();
    ReadNumbers();
    ReadModel();
    ReadExtraSamples();
    ReadPalette();
    ReadProfile();
    return std::move(facts_);
  }

 private:
  int Small(uint16_t tag, int otherwise) const {
    return static_cast<int>(reader_.Integer(directory_, tag, static_cast<uint64_t>(otherwise)) &
                            0xFFFF);
  }
  static uint32_t Narrow(uint64_t value) {
    return value > UINT32_MAX ? 0 : static_cast<uint32_t>(value);
  }

  void ReadForm();
  void ReadJpegQuality();
  void ReadNumbers();
  void ReadModel();
  void ReadExtraSamples();
  void ReadPalette();
  void ReadProfile();
  void BecomeColors(int bands);

  const TagReader& reader_;
  const TagDirectory& directory_;
  PageFacts facts_;
};

void FactsReader::ReadForm() {
  TiffForm& form = facts_.form;
  form.compression = Small(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  form.predictor = Small(TIFFTAG_PREDICTOR, PREDICTOR_NONE);
  form.fillOrder = Small(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
  const int samples = Small(TIFFTAG_SAMPLESPERPIXEL, 1);
  const int otherwise = samples >= 3              ? PHOTOMETRIC_RGB
                        : IsFax(form.compression) ? PHOTOMETRIC_MINISWHITE
                                                  : PHOTOMETRIC_MINISBLACK;
  form.photometric = Small(TIFFTAG_PHOTOMETRIC, otherwise);
  form.isPlanar =
      samples > 1 && Small(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
  form.isBigEndian = reader_.IsBigEndian();
  form.isBigTiff = reader_.IsBig();
  if (directory_.Has(TIFFTAG_TILEWIDTH)) {
    form.tileWidth = Narrow(reader_.Integer(directory_, TIFFTAG_TILEWIDTH, 0));
    form.tileHeight = Narrow(reader_.Integer(directory_, TIFFTAG_TILELENGTH, 0));
  } else {
    const uint64_t rows = reader_.Integer(directory_, TIFFTAG_ROWSPERSTRIP, kMostRows);
    form.rowsPerStrip =
        static_cast<uint32_t>(std::min<uint64_t>(rows == 0 ? kMostRows : rows, facts_.height));
  }
  if (form.photometric == PHOTOMETRIC_YCBCR) {
    const std::vector<uint64_t> halves = reader_.Integers(directory_, TIFFTAG_YCBCRSUBSAMPLING, 2);
    const bool isValid =
        halves.size() == 2 && halves[0] <= 4 && halves[1] <= 4 && halves[0] > 0 && halves[1] > 0;
    form.subsamplingX = isValid ? static_cast<int>(halves[0]) : 2;
    form.subsamplingY = isValid ? static_cast<int>(halves[1]) : 2;
  }
  if (form.compression == COMPRESSION_JPEG) ReadJpegQuality();
}

void FactsReader::ReadJpegQuality() {
  if (const TagPlace* tables = directory_.Find(TIFFTAG_JPEGTABLES)) {
    TagPlace head = *tables;
    head.count = std::min<uint64_t>(head.count, kJpegHeadBytes);
    facts_.form.jpegQuality = JpegQualityOf(reader_.Raw(head));
  }
  if (facts_.form.jpegQuality != 0) return;
  const bool isTiled = directory_.Has(TIFFTAG_TILEOFFSETS);
  TagPlace head{0, TIFF_BYTE, 0, 0};
  head.at = reader_.Integer(directory_, isTiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS, 0);
  if (head.at == 0 || head.at >= reader_.Size()) return;
  head.count = std::min(kJpegHeadBytes, reader_.Size() - head.at);
  facts_.form.jpegQuality = JpegQualityOf(reader_.Raw(head));
}

void FactsReader::ReadNumbers() {
  PixelLayout& layout = facts_.layout;
  layout.bits = Small(TIFFTAG_BITSPERSAMPLE, 1);
  layout.bands = Small(TIFFTAG_SAMPLESPERPIXEL, 1);
  const int format = Small(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  if (format == SAMPLEFORMAT_COMPLEXINT || format == SAMPLEFORMAT_COMPLEXIEEEFP) {
    throw UnsupportedError("TIFF: pictures of complex numbers are not supported");
  }
  const int bits = layout.bits;
  const bool isFloat = format == SAMPLEFORMAT_IEEEFP;
  const bool isRead = isFloat ? bits == 16 || bits == 24 || bits == 32 || bits == 64
                              : (bits >= 1 && bits <= 32) || bits == 64;
  if (!isRead || layout.bands < 1) {
    throw UnsupportedError(fmt::format("TIFF: samples of {} bits are not supported", bits));
  }
  if (isFloat) {
    layout.type = bits == 16   ? NumberType::float16
                  : bits == 64 ? NumberType::float64
                               : NumberType::float32;
    // Floats of 24 bits are read as floats of 32 bits.
    if (bits == 24) layout.bits = 32;
    return;
  }
  const bool isSigned = format == SAMPLEFORMAT_INT;
  if (bits <= 8) {
    layout.type = isSigned ? NumberType::int8 : NumberType::uint8;
  } else if (bits <= 16) {
    layout.type = isSigned ? NumberType::int16 : NumberType::uint16;
  } else if (bits <= 32) {
    layout.type = isSigned ? NumberType::int32 : NumberType::uint32;
  } else {
    layout.type = isSigned ? NumberType::int64 : NumberType::uint64;
  }
}

/// For kinds of pixels that are read as 8-bit red, green and blue.
void FactsReader::BecomeColors(int bands) {
  facts_.layout.type = NumberType::uint8;
  facts_.layout.bits = 8;
  facts_.layout.bands = bands;
  facts_.layout.model = ColorModel::rgb;
}

void FactsReader::ReadModel() {
  PixelLayout& layout = facts_.layout;
  if (facts_.form.compression == COMPRESSION_OJPEG) return BecomeColors(3);
  switch (facts_.form.photometric) {
    case PHOTOMETRIC_MINISWHITE:
      layout.model = ColorModel::grayWhiteIsZero;
      break;
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MASK:
      layout.model = ColorModel::gray;
      break;
    case PHOTOMETRIC_RGB:
      layout.model = ColorModel::rgb;
      break;
    case PHOTOMETRIC_PALETTE:
      layout.model = ColorModel::palette;
      if (layout.bits > 8) return BecomeColors(3);
      layout.type = NumberType::uint8;
      break;
    case PHOTOMETRIC_SEPARATED:
      layout.model = Small(TIFFTAG_INKSET, INKSET_CMYK) == INKSET_CMYK && layout.bands >= 4
                         ? ColorModel::cmyk
                         : ColorModel::other;
      break;
    case PHOTOMETRIC_YCBCR:
    case PHOTOMETRIC_LOGL:
    case PHOTOMETRIC_LOGLUV:
      return BecomeColors(3);
    case PHOTOMETRIC_CIELAB:
      layout.model = ColorModel::lab;
      break;
    case PHOTOMETRIC_ICCLAB:
      layout.model = ColorModel::iccLab;
      break;
    case PHOTOMETRIC_ITULAB:
      layout.model = ColorModel::ituLab;
      break;
    default:
      layout.model = ColorModel::other;
      break;
  }
  if (layout.bands < ColorsOf(layout.model)) {
    throw FormatError(
        fmt::format("TIFF: {} samples per pixel are too few for this kind of color", layout.bands));
  }
}

void FactsReader::ReadExtraSamples() {
  PixelLayout& layout = facts_.layout;
  const int colors = layout.model == ColorModel::other ? layout.bands : ColorsOf(layout.model);
  layout.extraBands = layout.bands - colors;
  const std::vector<uint64_t> kinds = reader_.Integers(directory_, TIFFTAG_EXTRASAMPLES, 65535);
  if (layout.extraBands == 0 || kinds.empty() || kinds.size() > static_cast<size_t>(layout.bands)) {
    return;
  }
  // Opacity must be the last sample; anything else stays a band without a meaning here.
  if (kinds.back() == EXTRASAMPLE_ASSOCALPHA) layout.alpha = AlphaKind::associated;
  if (kinds.back() == EXTRASAMPLE_UNASSALPHA) layout.alpha = AlphaKind::straight;
  if (layout.alpha != AlphaKind::none) layout.extraBands--;
}

/// Words of the color map are bytes times 256 or times 257; some programs write plain bytes.
void FactsReader::ReadPalette() {
  if (facts_.layout.model != ColorModel::palette) return;
  const size_t count = size_t{1} << facts_.layout.bits;
  const std::vector<uint64_t> map = reader_.Integers(directory_, TIFFTAG_COLORMAP, 3 * count);
  if (map.size() < 3 * count) return;
  const bool isPlain =
      std::all_of(map.begin(), map.end(), [](uint64_t word) { return word < 256; });
  const int shift = isPlain ? 0 : 8;
  std::vector<tagPALETTEENTRY> entries(count);
  for (size_t i = 0; i < count; i++) {
    entries[i] = {static_cast<uint8_t>(map[i] >> shift),
                  static_cast<uint8_t>(map[count + i] >> shift),
                  static_cast<uint8_t>(map[2 * count + i] >> shift), 0};
  }
  facts_.layout.palette = HPALETTE(entries);
}

void FactsReader::ReadProfile() {
  const TagPlace* place = directory_.Find(TIFFTAG_ICCPROFILE);
  if (!place || place->Bytes() == 0 || place->Bytes() > kMostProfileBytes) return;
  facts_.layout.profile = std::make_shared<const std::vector<uint8_t>>(reader_.Raw(*place));
}

/// The usual table of luminance for quality 50, in zigzag order.
constexpr uint8_t kLuminance[64] = {16,  11, 12, 14,  12,  10,  16,  14,  13, 14,  18,  17,  16,
                                    19,  24, 40, 26,  24,  22,  22,  24,  49, 35,  37,  29,  40,
                                    58,  51, 61, 60,  57,  51,  56,  55,  64, 72,  92,  78,  64,
                                    68,  87, 69, 55,  56,  80,  109, 81,  87, 95,  98,  103, 104,
                                    103, 62, 77, 113, 121, 112, 100, 120, 92, 101, 103, 99};

/// The table of a quality, an entry in zigzag order; `most` is that of bytes or of words.
int UsualEntry(int quality, size_t i, int most) {
  const int scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
  return std::clamp((kLuminance[i] * scale + 50) / 100, 1, most);
}

/// `table` has 64 bytes or 64 words.
int NearestQuality(std::span<const uint8_t> table) {
  const bool isWide = table.size() > 64;
  int nearest = 0;
  int64_t least = INT64_MAX;
  for (int quality = 1; quality <= 100; quality++) {
    int64_t difference = 0;
    for (size_t i = 0; i < 64; i++) {
      const int entry = isWide ? table[2 * i] << 8 | table[2 * i + 1] : table[i];
      difference += std::abs(UsualEntry(quality, i, isWide ? 32767 : 255) - entry);
    }
    if (difference < least) {
      least = difference;
      nearest = quality;
    }
  }
  return nearest;
}

}  // namespace

int ColorsOf(ColorModel model) {
  switch (model) {
    case ColorModel::gray:
    case ColorModel::grayWhiteIsZero:
    case ColorModel::palette:
      return 1;
    case ColorModel::rgb:
    case ColorModel::lab:
    case ColorModel::iccLab:
    case ColorModel::ituLab:
      return 3;
    case ColorModel::cmyk:
      return 4;
    case ColorModel::other:
      break;
  }
  return 0;
}

PageFacts FactsOfPage(const TagReader& reader, const TagDirectory& directory) {
  return FactsReader(reader, directory).Read();
}

int JpegQualityOf(std::span<const uint8_t> jpeg) {
  constexpr uint8_t kTables = 0xDB, kScan = 0xDA;
  size_t at = 2;
  while (at + 4 <= jpeg.size() && jpeg[at] == 0xFF && jpeg[at + 1] != kScan) {
    const size_t length = size_t{jpeg[at + 2]} << 8 | jpeg[at + 3];
    // Table 0, of bytes or of words.
    const size_t bytes = at + 4 < jpeg.size() && jpeg[at + 4] == 0x10 ? 128 : 64;
    if (jpeg[at + 1] == kTables && length >= 3 + bytes && at + 5 + bytes <= jpeg.size() &&
        (jpeg[at + 4] & 0x0F) == 0) {
      return NearestQuality(jpeg.subspan(at + 5, bytes));
    }
    at += 2 + length;
  }
  return 0;
}

}  // namespace rasterkit::detail
