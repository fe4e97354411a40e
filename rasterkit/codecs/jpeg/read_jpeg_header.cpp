#include <algorithm>

#include <rasterkit/codecs/jpeg/jpeg_blocks.h>
#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/codecs/jpeg/jpeg_hidden.h>
#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace detail;

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

void TakeFacts(PictureHeader& header, const JpegBlocks& blocks) {
  StatedResolutions stated;
  stated.header = blocks.jfif.resolution;
  stated.headerIsWhole = true;
  stated.photoshop = blocks.photoshop;
  if (blocks.jfif.unit > 0) stated.headerUnit = blocks.jfif.unit;
  if (!header.metadata.exif.empty()) {
    const ExifBlock exif(header.metadata.exif);
    header.orientation = OrientationOf(exif);
    stated.exif = ResolutionOf(exif);
    if (exif.IsDamaged()) header.warnings.emplace_back("JPEG: the EXIF block is damaged");
  }
  header.metadata.resolution = ChooseResolution(stated);
}

/// What the segments in front of the pixels state.
PictureHeader HeaderOf(const JpegFrame& frame, const JpegParts& parts) {
  if (frame.width == 0 || frame.height == 0) {
    throw FormatError("JPEG: the frame header has no size");
  }
  JpegBlocks blocks = CollectJpegBlocks(parts);
  PictureHeader header;
  header.width = frame.width;
  header.height = frame.height;
  header.metadata = std::move(blocks.metadata);
  header.warnings = std::move(blocks.warnings);
  header.layout = PixelsOf(frame, header.metadata.profile);
  header.form = FormOfJpeg(parts);
  TakeFacts(header, blocks);
  return header;
}

}  // namespace

PictureHeader ReadJpegHeader(Bytes file) {
  JpegParts parts = ReadJpegHead(file);
  const JpegLayout layout = LayoutOfJpeg(file, parts);
  if (!layout.manyScans) ReadJpegScans(file, parts);
  PictureHeader header = HeaderOf(layout.frame, parts);
  if (parts.hasEndMarker && parts.end < file.size()) header.trailerAt = parts.end;
  JpegHidden hidden = FindHidden(file, parts);
  header.hiddenCopies = std::move(hidden.copies);
  header.hiddenOthers = std::move(hidden.others);
  return header;
}

PictureHeader ReadOwnJpegHeader(TStream& stream) {
  const uint64_t start = stream.Position();
  std::vector<uint8_t> bytes = ReadJpegHeadBytes(stream);
  JpegParts parts = ReadJpegHead(bytes);
  if (LayoutOfJpeg(bytes, parts).manyScans) {
    // Later scans have tables of their own.
    stream.SetPosition(start);
    bytes = stream.ReadToEnd();
    parts = ReadJpegHead(bytes);
  }
  return HeaderOf(LayoutOfJpeg(bytes, parts).frame, parts);
}

PictureHeader ReadJpegFront(TStream& stream) {
  const std::vector<uint8_t> bytes = ReadJpegHeadBytes(stream);
  JpegParts parts = ReadJpegHead(bytes);
  return HeaderOf(LayoutOfJpeg(bytes, parts).frame, parts);
}

}  // namespace rasterkit
