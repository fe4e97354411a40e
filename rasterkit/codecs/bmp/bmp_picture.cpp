#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/bmp/bmp_file_encoder.h>
#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/codecs/bmp/bmp_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/foreign_blocks.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
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

/// What a file keeps of the metadata, and what it loses.
class BmpFile {
 public:
  BmpFile(const Raster& like, const PictureWriting& writing)
      : properties_{writing.metadata.resolution, nullptr} {
    const Metadata& metadata = writing.metadata;
    if (metadata.profile && !metadata.profile->empty()) {
      if (ProfileFits(metadata.profile, ProfileSpace::rgb)) {
        profile_ = metadata.profile;
        properties_.profile = profile_.get();
      } else {
        written_.changes.Lose(LossKind::profile, "ICC profile", "it does not describe RGB colors");
      }
    }
    const bool hasAlpha = like.Format() == pf32bit && like.alphaFormat == afDefined;
    if (like.transparentColor && !hasAlpha) {
      written_.changes.Lose(LossKind::transparentColor, "transparent color",
                            "a BMP file has no place for it");
    }
    LoseMetadata(metadata, written_.changes);
    written_.layout = WrittenLayout(like, profile_);
  }

  const BmpProperties& Properties() const { return properties_; }
  WrittenPicture Take() { return std::move(written_); }

 private:
  BmpProperties properties_;
  ColorProfile profile_;
  WrittenPicture written_;
};

class BmpRowWriter : public RowWriter {
 public:
  BmpRowWriter(const Raster& like, WrittenSize size, const PictureWriting& writing, TStream& stream)
      : like_(like.Format(), 0, 0), file_(like, writing), stream_(stream) {
    like_.CopyProperties(like);
    encoder_.emplace(like_, size.width, size.height, file_.Properties());
    encoder_->Begin(stream);
  }

  void Write(Pixels& rows) override { encoder_->WriteRows(std::get<Raster>(rows), stream_); }
  WrittenPicture Finish() override {
    encoder_->End(stream_);
    return file_.Take();
  }

 private:
  Raster like_;
  BmpFile file_;
  TStream& stream_;
  std::optional<BmpEncoder> encoder_;
};

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
  BmpFile file(*raster, writing);
  EncodeBmpWith(*raster, file.Properties(), stream);
  return file.Take();
}

std::unique_ptr<RowWriter> OpenBmpWriter(const Pixels& like, WrittenSize size,
                                         const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  const auto* raster = std::get_if<Raster>(&like);
  if (!raster) throw UnsupportedError("BMP: samples must be converted to colors of 8 bits");
  // The rows decide how many black entries a short palette gets.
  const bool isShort = IsIndexed(raster->Format()) &&
                       raster->palette.Count() < 1 << StoredBitsPerPixel(raster->Format());
  if (isShort || !IsSeekable(stream)) return nullptr;
  return std::make_unique<BmpRowWriter>(*raster, size, writing, stream);
}

}  // namespace rasterkit
