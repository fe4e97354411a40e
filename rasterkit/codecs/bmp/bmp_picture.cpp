#include <algorithm>
#include <bit>
#include <cmath>

#include <fmt/format.h>

#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/codecs/bmp/bmp_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/foreign_blocks.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

using namespace detail;

/// Reads a part of the file; what is missing at the end is skipped.
std::vector<uint8_t> PartOf(TStream& stream, uint64_t position, uint64_t count) {
  RequirePictureMemory(count, "BMP: a part of the file");
  std::vector<uint8_t> bytes(count);
  stream.SetPosition(position);
  bytes.resize(stream.Read(bytes));
  return bytes;
}

HPALETTE PaletteOf(TStream& stream, uint64_t start, const BmpHeader& header) {
  const auto entryBytes = static_cast<size_t>(header.paletteEntryBytes);
  const std::vector<uint8_t> bytes =
      PartOf(stream, start + header.paletteOffset,
             static_cast<uint64_t>(header.paletteEntries) * entryBytes);
  std::vector<tagPALETTEENTRY> entries;
  for (size_t i = 0; i + entryBytes <= bytes.size(); i += entryBytes) {
    entries.push_back({bytes[i + 2], bytes[i + 1], bytes[i], 0});
  }
  return HPALETTE(entries);
}

PixelLayout LayoutOf(const BmpHeader& header) {
  PixelLayout layout;
  if (header.bits <= 8) {
    layout.bits = header.bits;
    layout.bands = 1;
    layout.model = ColorModel::palette;
    return layout;
  }
  const BmpMasks& masks = header.masks;
  const int widest =
      std::max({std::popcount(masks.red), std::popcount(masks.green), std::popcount(masks.blue)});
  layout.bits = std::clamp(widest, 1, 8);
  if (masks.alpha != 0) {
    layout.bands = 4;
    layout.alpha = AlphaKind::straight;
  } else if (header.bits == 32) {
    layout.bands = 4;
    layout.extraBands = 1;
  }
  return layout;
}

/// Whole dots per meter stand in the file.
Resolution ResolutionOf(const BmpHeader& header) {
  const auto perMeter = [](double dpi) {
    return static_cast<uint32_t>(std::lround(dpi / kMetersPerInch));
  };
  return FromDotsPerMeter(perMeter(header.resolution.x), perMeter(header.resolution.y));
}

/// The header of a JPEG or PNG picture inside; the file around it adds what that does not state.
PictureHeader EmbeddedHeader(TStream& stream, uint64_t start, const BmpHeader& header) {
  const std::vector<uint8_t> bytes = PartOf(stream, start + header.pixelOffset, header.pixelBytes);
  return header.compression == BmpCompression::jpeg ? ReadJpegHeader(bytes) : ReadPngHeader(bytes);
}

PictureHeader HeaderAt(TStream& stream, uint64_t start) {
  CodecReport report;
  const BmpHeader facts = detail::ReadBmpHeader(stream, start, report);
  const bool isEmbedded =
      facts.compression == BmpCompression::jpeg || facts.compression == BmpCompression::png;
  PictureHeader header;
  if (isEmbedded) {
    header = EmbeddedHeader(stream, start, facts);
    // Its form is not the one of this file.
    header.form = {};
  } else {
    header.width = facts.width;
    header.height = facts.height;
    header.layout = LayoutOf(facts);
    if (facts.bits <= 8) header.layout.palette = PaletteOf(stream, start, facts);
  }
  Metadata& metadata = header.metadata;
  if (!metadata.resolution.IsKnown()) metadata.resolution = ResolutionOf(facts);
  if (!metadata.profile && facts.profileBytes > 0) {
    metadata.profile = std::make_shared<const std::vector<uint8_t>>(
        PartOf(stream, start + facts.profileOffset, facts.profileBytes));
    header.layout.profile = metadata.profile;
  }
  header.warnings.insert(header.warnings.end(), report.warnings.begin(), report.warnings.end());
  return header;
}

void LoseMetadata(const Metadata& metadata, Changes& changes) {
  constexpr const char* kWhy = "a BMP file has no place for it";
  const auto lose = [&](bool isThere, LossKind kind, const std::string& what) {
    if (isThere) changes.Lose(kind, what, kWhy);
  };
  const auto count = [](size_t number, const char* one, const char* many) {
    return fmt::format("{} {}", number, number == 1 ? one : many);
  };
  if (!metadata.exif.empty()) {
    const ExifBlock exif(metadata.exif);
    lose(true, LossKind::exif, fmt::format("EXIF block of {} bytes", metadata.exif.size()));
    lose(!exif.All(ExifDirectoryId::gps).empty(), LossKind::gps, "GPS position");
  }
  const size_t xmpBytes = metadata.xmp.size() + metadata.extendedXmp.size();
  lose(xmpBytes > 0, LossKind::xmp, fmt::format("XMP packet of {} bytes", xmpBytes));
  lose(!metadata.iptc.empty(), LossKind::iptc,
       fmt::format("IPTC records of {} bytes", metadata.iptc.size()));
  lose(!metadata.photoshop.empty(), LossKind::otherBlock,
       fmt::format("image resources of {} bytes", metadata.photoshop.size()));
  lose(!metadata.comments.empty(), LossKind::comment,
       count(metadata.comments.size(), "comment", "comments"));
  lose(!metadata.texts.empty(), LossKind::text, count(metadata.texts.size(), "text", "texts"));
  lose(!metadata.jpegSegments.empty(), LossKind::otherBlock,
       count(metadata.jpegSegments.size(), "other JPEG segment", "other JPEG segments"));
  LosePngChunks(metadata, "a BMP file", changes);
  LoseTiffTags(metadata, "a BMP file", changes);
}

/// The kind of pixels of the file that the encoder writes.
PixelLayout WrittenLayout(const Raster& raster, const ColorProfile& profile) {
  PixelLayout layout;
  if (IsIndexed(raster.Format())) {
    layout.bits = StoredBitsPerPixel(raster.Format());
    layout.bands = 1;
    layout.model = ColorModel::palette;
    layout.palette = raster.palette;
  } else if (raster.Format() == pf32bit) {
    layout.bands = 4;
    const bool hasAlpha = raster.alphaFormat == afDefined;
    layout.alpha = hasAlpha ? AlphaKind::straight : AlphaKind::none;
    layout.extraBands = hasAlpha ? 0 : 1;
  } else if (raster.Format() == pf15bit || raster.Format() == pf16bit) {
    layout.bits = raster.Format() == pf15bit ? 5 : 6;
  }
  layout.profile = profile;
  return layout;
}

}  // namespace

PictureHeader ReadBmpHeader(TStream& stream) {
  const LimitsScope limits;
  if (stream.Size() > stream.Position()) return HeaderAt(stream, stream.Position());
  // Pipes have no size and no random access.
  const std::vector<uint8_t> bytes = stream.ReadToEnd();
  if (bytes.empty()) throw FormatError("BMP: there are no data");
  TSpanStream memory(bytes);
  return HeaderAt(memory, 0);
}

WrittenPicture WriteBmp(const Pixels& pixels, const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  const auto* raster = std::get_if<Raster>(&pixels);
  if (!raster) throw UnsupportedError("BMP: samples must be converted to colors of 8 bits");
  const Metadata& metadata = writing.metadata;
  WrittenPicture written;
  BmpProperties properties{metadata.resolution, nullptr};
  ColorProfile profile;
  if (metadata.profile && !metadata.profile->empty()) {
    if (ProfileFits(metadata.profile, ProfileSpace::rgb)) {
      profile = metadata.profile;
      properties.profile = profile.get();
    } else {
      written.changes.Lose(LossKind::profile, "ICC profile", "it does not describe RGB colors");
    }
  }
  const bool hasAlpha = raster->Format() == pf32bit && raster->alphaFormat == afDefined;
  if (raster->transparentColor && !hasAlpha) {
    written.changes.Lose(LossKind::transparentColor, "transparent color",
                         "a BMP file has no place for it");
  }
  LoseMetadata(metadata, written.changes);
  EncodeBmpWith(*raster, properties, stream);
  written.layout = WrittenLayout(*raster, profile);
  return written;
}

}  // namespace rasterkit
