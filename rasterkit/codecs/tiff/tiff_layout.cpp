#include <algorithm>

#include <fmt/format.h>

#include <rasterkit/codecs/rows/frame_format.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/codecs/tiff/tiff_layout.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

/// Values of a sensor, brought to one scale.
constexpr int kLinearRaw = 34892;

bool IsGray(int photometric) {
  return photometric == PHOTOMETRIC_MINISWHITE || photometric == PHOTOMETRIC_MINISBLACK ||
         photometric == PHOTOMETRIC_MASK;
}

bool IsFax(int compression) {
  return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW ||
         compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

bool IsJpegOfColor(const TiffHandle& handle) {
  uint16_t photometric = 0;
  return handle.Field<uint16_t>(TIFFTAG_COMPRESSION, 0) == COMPRESSION_JPEG &&
         TIFFGetField(handle.Tiff(), TIFFTAG_PHOTOMETRIC, &photometric) &&
         photometric == PHOTOMETRIC_YCBCR &&
         handle.Field<uint16_t>(TIFFTAG_PLANARCONFIG, 0) == PLANARCONFIG_CONTIG;
}

/// Reads the tags of one directory into a layout.
class LayoutReader {
 public:
  LayoutReader(TiffHandle& handle, TiffReading reading) : handle_(handle), reading_(reading) {}

  TiffLayout Read() {
    ReadSamples();
    ReadPhotometric();
    ReadAlpha();
    if (HasYcbcrPlanes()) {
      SetRows(TiffRowKind::ycbcrPlanes, GUID_WICPixelFormat24bppBGR, false);
    } else if (NeedsLibrary()) {
      SetRows(TiffRowKind::library, GUID_WICPixelFormat24bppBGR, false);
      if (!IsYcbcr()) SetRows(TiffRowKind::library, GUID_WICPixelFormat32bppBGRA, true);
    } else if (reading_ == TiffReading::pixels && NeedsSamples()) {
      ChooseSamples();
    } else {
      ChooseRows();
    }
    ChoosePlanes();
    ReadGrid();
    JoinStrips();
    return layout_;
  }

 private:
  template <typename T>
  T Field(uint32_t tag, T otherwise) const {
    return handle_.Field<T>(tag, otherwise);
  }

  void ReadSamples();
  void ReadPhotometric();
  void ReadAlpha();
  bool NeedsSamples() const;
  void ChooseSamples();
  void ChooseRows();
  void ChooseGrayRows();
  void ChoosePaletteRows();
  void ChooseRgbRows();
  void ChooseInkRows();
  void ChoosePlanes();
  void ReadGrid();
  void JoinStrips();

  bool IsYcbcr() const { return layout_.photometric == PHOTOMETRIC_YCBCR; }
  /// True if each row that is read has one sample per pixel.
  bool IsAlone() const { return samples_ == 1 || isPlanar_; }
  bool IsUnsigned(int bits) const {
    return layout_.number == TiffNumber::unsignedInteger && layout_.bits == bits;
  }

  bool HasYcbcrPlanes() const {
    return IsYcbcr() && isPlanar_ && samples_ >= layout_.channels && IsUnsigned(8) &&
           layout_.compression != COMPRESSION_OJPEG;
  }

  bool NeedsLibrary() const {
    const bool isLogarithmic =
        layout_.photometric == PHOTOMETRIC_LOGL || layout_.photometric == PHOTOMETRIC_LOGLUV;
    return IsYcbcr() || isLogarithmic || layout_.compression == COMPRESSION_OJPEG;
  }

  void SetRows(TiffRowKind rows, WICPixelFormat format, bool isConverted) {
    layout_.rows = rows;
    layout_.format = format;
    layout_.isConverted = isConverted;
  }
  void Convert(TiffRowKind rows) { SetRows(rows, GUID_WICPixelFormat32bppBGRA, true); }
  /// Direct rows if there are no other samples between the pixels, else picked samples.
  void SetWholeSamples(WICPixelFormat format) {
    SetRows(IsAlone() ? TiffRowKind::same : TiffRowKind::firstSample, format, false);
  }
  void RequireSamples(int count) const {
    if (samples_ < count) {
      throw FormatError(
          fmt::format("TIFF: {} samples per pixel are too few for this kind of color", samples_));
    }
  }

  TiffHandle& handle_;
  const TiffReading reading_;
  TiffLayout layout_;
  int samples_ = 1;
  bool isPlanar_ = false;
  /// Samples of the file, before planes are chosen.
  std::optional<int> alphaSample_;
};

void LayoutReader::ReadSamples() {
  layout_.width = Field<uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
  layout_.height = Field<uint32_t>(TIFFTAG_IMAGELENGTH, 0);
  if (layout_.width == 0 || layout_.height == 0) {
    throw FormatError("TIFF: the picture has no pixels");
  }
  layout_.compression = Field<uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  layout_.bits = Field<uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
  samples_ = Field<uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
  isPlanar_ = Field<uint16_t>(TIFFTAG_PLANARCONFIG, 0) == PLANARCONFIG_SEPARATE && samples_ > 1;
  const int format = Field<uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  const bool isComplex = format == SAMPLEFORMAT_COMPLEXINT || format == SAMPLEFORMAT_COMPLEXIEEEFP;
  if (format == SAMPLEFORMAT_INT || format == SAMPLEFORMAT_COMPLEXINT) {
    layout_.number = TiffNumber::signedInteger;
  }
  if (format == SAMPLEFORMAT_IEEEFP || format == SAMPLEFORMAT_COMPLEXIEEEFP) {
    layout_.number = TiffNumber::floating;
  }
  if (isComplex && layout_.bits % 2 == 0) {
    // Only real parts are shown; imaginary parts lie between them.
    if (isPlanar_) throw UnsupportedError("TIFF: complex numbers in planes are not supported");
    layout_.isComplex = true;
    layout_.bits /= 2;
    samples_ *= 2;
  }
  const int bits = layout_.bits;
  const bool isRead = layout_.number == TiffNumber::floating
                          ? bits == 16 || bits == 24 || bits == 32 || bits == 64
                          : (bits >= 1 && bits <= 32) || bits == 64;
  if (!isRead || samples_ < 1) {
    throw UnsupportedError(fmt::format("TIFF: samples of {} bits are not supported", bits));
  }
}

void LayoutReader::ReadPhotometric() {
  uint16_t photometric = PHOTOMETRIC_MINISBLACK;
  if (!TIFFGetField(handle_.Tiff(), TIFFTAG_PHOTOMETRIC, &photometric)) {
    if (samples_ >= 3) photometric = PHOTOMETRIC_RGB;
    if (IsFax(layout_.compression)) photometric = PHOTOMETRIC_MINISWHITE;
  }
  if (IsJpegOfColor(handle_)) photometric = PHOTOMETRIC_RGB;
  layout_.photometric = photometric;
  layout_.isInverted = photometric == PHOTOMETRIC_MINISWHITE;
  if (photometric == PHOTOMETRIC_SEPARATED) {
    layout_.channels = 4;
  } else if (!IsGray(photometric) && photometric != PHOTOMETRIC_PALETTE) {
    layout_.channels = 3;
  }
}

void LayoutReader::ReadAlpha() {
  uint16_t count = 0;
  uint16_t* kinds = nullptr;
  if (!TIFFGetField(handle_.Tiff(), TIFFTAG_EXTRASAMPLES, &count, &kinds)) return;
  for (int i = 0; i < count && count <= samples_; i++) {
    const int sample = samples_ - count + i;
    const bool isAlpha = kinds[i] == EXTRASAMPLE_ASSOCALPHA || kinds[i] == EXTRASAMPLE_UNASSALPHA;
    if (!isAlpha || sample < layout_.channels) continue;
    alphaSample_ = sample;
    layout_.isAssociated = kinds[i] == EXTRASAMPLE_ASSOCALPHA;
    return;
  }
}

void LayoutReader::ChooseGrayRows() {
  const int bits = layout_.bits;
  const bool isWord = bits == 16;
  if (alphaSample_) {
    const bool isInteger = IsUnsigned(8) || IsUnsigned(16);
    return Convert(isInteger ? TiffRowKind::integers : TiffRowKind::scaled);
  }
  if (layout_.number == TiffNumber::unsignedInteger) {
    if (bits == 1 && IsAlone()) {
      return SetRows(TiffRowKind::same, GUID_WICPixelFormatBlackWhite, false);
    }
    if (bits == 4 && IsAlone()) {
      return SetRows(TiffRowKind::same, GUID_WICPixelFormat4bppGray, false);
    }
    if (bits == 8) return SetWholeSamples(GUID_WICPixelFormat8bppGray);
    if (isWord) return SetWholeSamples(GUID_WICPixelFormat16bppGray);
    return Convert(bits < 16 ? TiffRowKind::scaled : TiffRowKind::stretched);
  }
  // Values of a grid, not colors.
  layout_.isInverted = false;
  if (layout_.number == TiffNumber::signedInteger && isWord) {
    return SetWholeSamples(GUID_WICPixelFormat16bppGrayFixedPoint);
  }
  if (layout_.number == TiffNumber::floating && isWord) {
    return SetWholeSamples(GUID_WICPixelFormat16bppGrayHalf);
  }
  if (layout_.number == TiffNumber::floating && bits == 32) {
    return SetWholeSamples(GUID_WICPixelFormat32bppGrayFloat);
  }
  if (layout_.number == TiffNumber::floating && bits == 24) {
    return SetRows(TiffRowKind::float24, GUID_WICPixelFormat32bppGrayFloat, false);
  }
  Convert(TiffRowKind::stretched);
}

void LayoutReader::ChoosePaletteRows() {
  const int bits = layout_.bits;
  if (bits > 16 || layout_.number == TiffNumber::floating) {
    throw UnsupportedError(fmt::format("TIFF: palette indexes of {} bits are not supported", bits));
  }
  layout_.number = TiffNumber::unsignedInteger;
  if (!alphaSample_ && bits == 8) return SetWholeSamples(GUID_WICPixelFormat8bppIndexed);
  if (!alphaSample_ && IsAlone() && bits == 4) {
    return SetRows(TiffRowKind::same, GUID_WICPixelFormat4bppIndexed, false);
  }
  if (!alphaSample_ && IsAlone() && bits == 1) {
    return SetRows(TiffRowKind::same, GUID_WICPixelFormat1bppIndexed, false);
  }
  Convert(TiffRowKind::indexed);
}

void LayoutReader::ChooseRgbRows() {
  RequireSamples(3);
  if (!IsUnsigned(8)) return Convert(IsUnsigned(16) ? TiffRowKind::integers : TiffRowKind::scaled);
  if (alphaSample_) return SetRows(TiffRowKind::integers, GUID_WICPixelFormat32bppBGRA, false);
  SetRows(TiffRowKind::rgb, GUID_WICPixelFormat24bppBGR, false);
}

void LayoutReader::ChooseInkRows() {
  RequireSamples(4);
  if (Field<uint16_t>(TIFFTAG_INKSET, INKSET_CMYK) != INKSET_CMYK) {
    throw UnsupportedError(
        "TIFF: inks other than cyan, magenta, yellow and black are not supported");
  }
  Convert(TiffRowKind::cmyk);
}

/// True if a raster cannot hold the pixels as they are.
bool LayoutReader::NeedsSamples() const {
  const bool isUnsigned = layout_.number == TiffNumber::unsignedInteger;
  const bool isPlainDepth = layout_.bits == 1 || layout_.bits == 4 || layout_.bits == 8;
  const bool isColor = layout_.photometric == PHOTOMETRIC_RGB && IsUnsigned(8);
  if (IsGray(layout_.photometric)) return !isUnsigned || samples_ != 1 || !isPlainDepth;
  if (layout_.photometric == PHOTOMETRIC_PALETTE) {
    return layout_.bits <= 8 && (samples_ != 1 || !isPlainDepth);
  }
  return !isColor || !(samples_ == 3 || (samples_ == 4 && alphaSample_ && !layout_.isAssociated));
}

void LayoutReader::ChooseSamples() {
  if (layout_.isComplex) {
    throw UnsupportedError("TIFF: pictures of complex numbers are not supported");
  }
  switch (layout_.photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MASK:
      layout_.channels = 1;
      break;
    case PHOTOMETRIC_PALETTE:
      layout_.number = TiffNumber::unsignedInteger;
      break;
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
      RequireSamples(3);
      break;
    case PHOTOMETRIC_SEPARATED:
    case kLinearRaw:
      break;
    default:
      throw UnsupportedError(
          fmt::format("TIFF: pixels of the kind {} with {} bits are not supported",
                      layout_.photometric, layout_.bits));
  }
  layout_.isInverted = false;
  SetRows(TiffRowKind::samples, GUID_WICPixelFormat32bppBGRA, false);
}

void LayoutReader::ChooseRows() {
  switch (layout_.photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MASK:
      return ChooseGrayRows();
    case PHOTOMETRIC_PALETTE:
      return ChoosePaletteRows();
    case PHOTOMETRIC_RGB:
      return ChooseRgbRows();
    case PHOTOMETRIC_SEPARATED:
      return ChooseInkRows();
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
      RequireSamples(3);
      if (layout_.bits != 8 && layout_.bits != 16) break;
      return Convert(TiffRowKind::lab);
    default:
      break;
  }
  throw UnsupportedError(fmt::format("TIFF: pixels of the kind {} with {} bits are not supported",
                                     layout_.photometric, layout_.bits));
}

void LayoutReader::ChoosePlanes() {
  const int channels = std::min(layout_.channels, samples_);
  layout_.pitch = samples_;
  layout_.alphaAt = alphaSample_;
  layout_.planes = {0};
  if (!isPlanar_ || layout_.rows == TiffRowKind::library) return;
  if (layout_.rows == TiffRowKind::samples) {
    for (int plane = 1; plane < samples_; plane++) {
      layout_.planes.push_back(static_cast<uint16_t>(plane));
    }
    return;
  }
  for (int plane = 1; plane < channels; plane++) {
    layout_.planes.push_back(static_cast<uint16_t>(plane));
  }
  if (alphaSample_) {
    layout_.planes.push_back(static_cast<uint16_t>(*alphaSample_));
    layout_.alphaAt = channels;
  }
  layout_.pitch = static_cast<int>(layout_.planes.size());
}

void LayoutReader::ReadGrid() {
  TIFF* tiff = handle_.Tiff();
  TiffBlockGrid& grid = layout_.grid;
  grid.isTiled = TIFFIsTiled(tiff) != 0;
  grid.width = grid.isTiled ? Field<uint32_t>(TIFFTAG_TILEWIDTH, 0) : layout_.width;
  grid.height = Field<uint32_t>(grid.isTiled ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP, 0);
  if (!grid.isTiled) grid.height = std::min(grid.height, layout_.height);
  if (grid.width == 0 || grid.height == 0) {
    throw FormatError("TIFF: the strips or tiles have no size");
  }
  const uint64_t across = (uint64_t{layout_.width} + grid.width - 1) / grid.width;
  const uint64_t down = (uint64_t{layout_.height} + grid.height - 1) / grid.height;
  const uint64_t planes = isPlanar_ ? static_cast<uint64_t>(samples_) : 1;
  const uint32_t blocks = grid.isTiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
  if (across * down > UINT32_MAX / planes || across * down * planes != blocks) {
    throw FormatError("TIFF: the number of strips or tiles does not fit the picture");
  }
  if (layout_.compression == COMPRESSION_LZW) layout_.lzwStyle = LzwStyleOfFile(handle_, blocks);
  grid.across = static_cast<uint32_t>(across);
  grid.down = static_cast<uint32_t>(down);
  if (layout_.rows == TiffRowKind::library) return;
  if (across > 1 && layout_.rows != TiffRowKind::samples &&
      uint64_t{grid.width} * static_cast<uint64_t>(PixelBits(layout_.format)) % 8 != 0) {
    throw FormatError("TIFF: the width of the tiles is not a multiple of 16");
  }
  const uint64_t rowSamples =
      uint64_t{grid.width} * static_cast<uint64_t>(isPlanar_ ? 1 : samples_);
  const uint64_t rowBits = rowSamples * static_cast<uint64_t>(layout_.bits);
  const uint64_t rowBytes = (rowBits + 7) / 8;
  const uint64_t expected = grid.isTiled ? TIFFTileRowSize64(tiff) : TIFFScanlineSize64(tiff);
  if (rowBytes != expected || rowBytes > SIZE_MAX / 2) {
    throw FormatError("TIFF: the rows are not as long as the picture is wide");
  }
  grid.rowBytes = static_cast<size_t>(rowBytes);
}

/// Many programs write a strip per row; they are read in larger pieces.
void LayoutReader::JoinStrips() {
  TiffBlockGrid& grid = layout_.grid;
  if (grid.isTiled || grid.down == 1 || layout_.compression != COMPRESSION_NONE ||
      layout_.rows == TiffRowKind::library || layout_.rows == TiffRowKind::ycbcrPlanes) {
    return;
  }
  TIFF* tiff = handle_.Tiff();
  std::vector<TiffExtent> planes;
  const uint32_t count = TIFFNumberOfStrips(tiff);
  for (uint32_t strip = 0; strip < count; strip++) {
    const uint32_t y = strip % grid.down * grid.height;
    const uint64_t rows = std::min(grid.height, layout_.height - y);
    const TiffExtent extent{TIFFGetStrileOffset(tiff, strip), TIFFGetStrileByteCount(tiff, strip)};
    if (extent.offset == 0 || extent.count != rows * grid.rowBytes) return;
    if (y == 0) {
      planes.push_back(extent);
    } else if (extent.offset == planes.back().offset + planes.back().count) {
      planes.back().count += extent.count;
    } else {
      return;
    }
  }
  layout_.joinedStrips = std::move(planes);
  grid.down = 1;
  grid.height = layout_.height;
}

}  // namespace

void PrepareTiff(TiffHandle& handle) {
  if (IsJpegOfColor(handle)) TIFFSetField(handle.Tiff(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
}

TiffLayout ReadTiffLayout(TiffHandle& handle, TiffReading reading) {
  const int compression = handle.Field<uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  if (!TIFFIsCODECConfigured(static_cast<uint16_t>(compression))) {
    throw UnsupportedError("TIFF: " + TiffCompressionName(compression) + " is not supported");
  }
  return LayoutReader(handle, reading).Read();
}

}  // namespace rasterkit::detail
