#include <algorithm>

#include <fmt/format.h>
#include <tiff.h>

#include <rasterkit/codecs/rows/geotiff_tags.h>
#include <rasterkit/codecs/tiff/tiff_directory.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {

namespace {

using detail::TiffDirectory;

constexpr int kMostPages = 65535;

/// Further tie points are ignored: a warped picture has some hundreds.
constexpr size_t kMostTiePoints = 4096;

/// Reads a tag whose numbers come in groups of `group`; empty if they do not.
std::vector<double> Grouped(const TiffDirectory& directory, uint16_t tag, size_t group,
                            size_t most) {
  std::vector<double> values = directory.Numbers(tag, most);
  if (values.size() % group != 0) values.clear();
  return values;
}

/// Keys are quadruples of id, place of the value (0: here), count and value. The first quadruple
/// holds the number of those that follow.
void ReadGeoKeys(const TiffDirectory& directory, TiffFacts& facts) {
  const std::vector<double> keys = directory.Numbers(detail::kGeoKeysTag, 4 * 1024);
  for (size_t i = 4; i + 4 <= keys.size(); i += 4) {
    if (keys[i] >= detail::kFirstSystemKey) facts.hasCoordinateSystem = true;
    const bool isHere = keys[i + 1] == 0 && keys[i + 2] == 1;
    const bool isKnown = keys[i + 3] == 1 || keys[i + 3] == 2;
    if (facts.rasterType == 0 && keys[i] == detail::kRasterTypeKey && isHere && isKnown) {
      facts.rasterType = static_cast<int>(keys[i + 3]);
    }
  }
}

std::vector<MetadataKind> MetadataKinds(const TiffDirectory& directory) {
  struct TagsOfKind {
    MetadataKind kind;
    std::vector<uint16_t> tags;
  };
  const TagsOfKind kinds[] = {
      {MetadataKind::text,
       {TIFFTAG_DOCUMENTNAME, TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_MAKE, TIFFTAG_MODEL,
        TIFFTAG_PAGENAME, TIFFTAG_SOFTWARE, TIFFTAG_DATETIME, TIFFTAG_ARTIST, TIFFTAG_HOSTCOMPUTER,
        TIFFTAG_COPYRIGHT}},
      {MetadataKind::xmp, {TIFFTAG_XMLPACKET}},
      {MetadataKind::iptc, {TIFFTAG_RICHTIFFIPTC, TIFFTAG_PHOTOSHOP}},
      {MetadataKind::profile, {TIFFTAG_ICCPROFILE}},
      {MetadataKind::exif, {TIFFTAG_EXIFIFD, TIFFTAG_GPSIFD}},
  };
  std::vector<MetadataKind> found;
  for (const TagsOfKind& row : kinds) {
    if (std::any_of(row.tags.begin(), row.tags.end(),
                    [&](uint16_t tag) { return directory.Has(tag); })) {
      found.push_back(row.kind);
    }
  }
  return found;
}

void ReadPixelLayout(const TiffDirectory& directory, TiffFacts& facts) {
  const auto number = [&](uint16_t tag, uint32_t otherwise) {
    return static_cast<int>(directory.Number(tag).value_or(otherwise) & 0xFFFF);
  };
  facts.width = directory.Number(TIFFTAG_IMAGEWIDTH).value_or(0);
  facts.height = directory.Number(TIFFTAG_IMAGELENGTH).value_or(0);
  if (facts.width == 0 || facts.height == 0) {
    throw FormatError("TIFF: the first directory has no size");
  }
  facts.bitsPerSample = number(TIFFTAG_BITSPERSAMPLE, 1);
  facts.samples = number(TIFFTAG_SAMPLESPERPIXEL, 1);
  facts.sampleFormat = number(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  facts.compression = number(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  facts.photometric = number(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
  facts.isTiled = directory.Has(TIFFTAG_TILEWIDTH);
  facts.isPlanar = number(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
  const int orientation = number(TIFFTAG_ORIENTATION, 0);
  if (orientation >= 1 && orientation <= 8) facts.orientation = orientation;
}

TiffFacts FactsOf(TStream& stream) {
  const TiffDirectory directory(stream);
  TiffFacts facts;
  ReadPixelLayout(directory, facts);
  facts.isBigTiff = directory.IsBigTiff();
  facts.isBigEndian = directory.IsBigEndian();
  const TiffDirectory::Pages pages = directory.CountDirectories(kMostPages);
  facts.pages = pages.all;
  facts.secondaryPages = pages.secondary;
  facts.pixelScale = Grouped(directory, detail::kPixelScaleTag, 3, 3);
  facts.tiePoints = Grouped(directory, detail::kTiePointTag, 6, 6 * kMostTiePoints);
  facts.transformation = Grouped(directory, detail::kTransformationTag, 16, 16);
  ReadGeoKeys(directory, facts);
  facts.noData = directory.Text(detail::kNoDataTag);
  facts.metadata = MetadataKinds(directory);
  return facts;
}

}  // namespace

TiffFacts ReadTiffFacts(TStream& stream) {
  if (stream.Size() > stream.Position()) return FactsOf(stream);
  // Pipes have no size and give their bytes only once.
  TMemoryStream memory(stream.ReadToEnd());
  return FactsOf(memory);
}

std::string TiffCompressionName(int compression) {
  switch (compression) {
    case COMPRESSION_NONE:
      return "none";
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTRLEW:
      return "CCITT RLE";
    case COMPRESSION_CCITTFAX3:
      return "CCITT G3";
    case COMPRESSION_CCITTFAX4:
      return "CCITT G4";
    case COMPRESSION_LZW:
      return "LZW";
    case COMPRESSION_OJPEG:
      return "old JPEG";
    case COMPRESSION_JPEG:
      return "JPEG";
    case COMPRESSION_PACKBITS:
      return "PackBits";
    case COMPRESSION_THUNDERSCAN:
      return "ThunderScan";
    case COMPRESSION_PIXARLOG:
      return "PixarLog";
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
      return "Deflate";
    case COMPRESSION_JBIG:
      return "JBIG";
    case COMPRESSION_SGILOG:
    case COMPRESSION_SGILOG24:
      return "SGI Log";
    case COMPRESSION_LERC:
      return "LERC";
    case COMPRESSION_LZMA:
      return "LZMA";
    case COMPRESSION_ZSTD:
      return "ZSTD";
    case COMPRESSION_WEBP:
      return "WebP";
    case COMPRESSION_JXL:
      return "JPEG XL";
    default:
      return fmt::format("compression {}", compression);
  }
}

}  // namespace rasterkit
