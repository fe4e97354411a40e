#include <algorithm>

#include <rasterkit/codecs/jpeg/jpeg_blocks.h>
#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/codecs/jpeg/jpeg_hidden.h>
#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace detail;

constexpr uint16_t kOrientation = 274, kResolutionX = 282, kResolutionY = 283, kUnit = 296;

PixelLayout PixelsOf(const JpegFrame& frame, const ColorProfile& profile) {
  PixelLayout layout;
  layout.bits = frame.bits;
  layout.type = frame.bits > 8 ? NumberType::uint16 : NumberType::uint8;
  layout.bands = frame.components;
  layout.model = ColorModel::other;
  if (frame.components == 1) layout.model = ColorModel::gray;
  if (frame.components == 3) layout.model = ColorModel::rgb;
  if (frame.components == 4) layout.model = ColorModel::cmyk;
  const auto space = frame.components == 1   ? ProfileSpace::gray
                     : frame.components == 3 ? ProfileSpace::rgb
                                             : ProfileSpace::cmyk;
  if (ProfileFits(profile, space)) layout.profile = profile;
  return layout;
}

Resolution ResolutionOf(const ExifBlock& exif) {
  constexpr uint32_t kInch = 2, kCentimeter = 3;
  const std::vector<double> x = exif.Numbers(ExifDirectoryId::main, kResolutionX);
  const std::vector<double> y = exif.Numbers(ExifDirectoryId::main, kResolutionY);
  const uint32_t unit = exif.Number(ExifDirectoryId::main, kUnit).value_or(kInch);
  if (x.empty() || y.empty() || (unit != kInch && unit != kCentimeter)) return {};
  const double factor = unit == kCentimeter ? 2.54 : 1;
  const Resolution stated{x[0] * factor, y[0] * factor};
  return stated.IsKnown() ? stated : Resolution{};
}

void TakeFacts(PictureHeader& header, const JpegBlocks& blocks) {
  StatedResolutions stated;
  stated.header = blocks.jfif.resolution;
  stated.headerIsWhole = true;
  if (blocks.jfif.unit > 0) stated.headerUnit = blocks.jfif.unit;
  if (!header.metadata.exif.empty()) {
    const ExifBlock exif(header.metadata.exif);
    const auto orientation = exif.Number(ExifDirectoryId::main, kOrientation);
    if (orientation && *orientation >= 1 && *orientation <= 8) {
      header.orientation = static_cast<int>(*orientation);
    }
    stated.exif = ResolutionOf(exif);
    if (exif.IsDamaged()) header.warnings.emplace_back("JPEG: the EXIF block is damaged");
  }
  header.metadata.resolution = ChooseResolution(stated);
}

}  // namespace

PictureHeader ReadJpegHeader(Bytes file) {
  JpegParts parts = ReadJpegHead(file);
  const JpegLayout layout = LayoutOfJpeg(file, parts);
  if (layout.frame.width == 0 || layout.frame.height == 0) {
    throw FormatError("JPEG: the frame header has no size");
  }
  if (!layout.manyScans) ReadJpegScans(file, parts);
  JpegBlocks blocks = CollectJpegBlocks(parts);
  PictureHeader header;
  header.width = layout.frame.width;
  header.height = layout.frame.height;
  header.metadata = std::move(blocks.metadata);
  header.metadata.photoshop = blocks.resources;
  header.warnings = std::move(blocks.warnings);
  header.layout = PixelsOf(layout.frame, header.metadata.profile);
  header.form = FormOfJpeg(parts);
  TakeFacts(header, blocks);
  if (parts.hasEndMarker && parts.end < file.size()) header.trailerAt = parts.end;
  JpegHidden hidden = FindHidden(file, parts);
  header.hiddenCopies = std::move(hidden.copies);
  header.hiddenOthers = std::move(hidden.others);
  return header;
}

}  // namespace rasterkit
