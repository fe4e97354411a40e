#include <algorithm>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/bmp/bmp_picture.h>
#include <rasterkit/codecs/bmp/bmp_plain_rows.h>
#include <rasterkit/codecs/bmp/bmp_signature.h>
#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/drawn_signatures.h>
#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/codecs/gif/gif_metadata.h>
#include <rasterkit/codecs/gif/gif_picture.h>
#include <rasterkit/codecs/gif/gif_signature.h>
#include <rasterkit/codecs/heif/heif_picture.h>
#include <rasterkit/codecs/heif/heif_signature.h>
#include <rasterkit/codecs/jp2/jp2_picture.h>
#include <rasterkit/codecs/jp2/jp2_signature.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_metadata.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_signature.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_row_reader.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_row_writer.h>
#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/codecs/png/png_metadata.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/png/png_signature.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/codecs/tiff/tiff_signature.h>
#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/codecs/webp/webp_metadata.h>
#include <rasterkit/codecs/webp/webp_picture.h>
#include <rasterkit/codecs/webp/webp_signature.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

void EncodeAsBmp(const Raster& raster, TStream& stream, const EncodeOptions&) {
  EncodeBmp(raster, stream, BmpProfile::embed);
}

void EncodeAsJpeg(const Raster& raster, TStream& stream, const EncodeOptions& options) {
  const bool isGray = raster.Format() == pf8bit && IsGrayRamp(raster.palette);
  if (isGray || raster.Format() == pf24bit) {
    stream.Write(EncodeJpeg(raster, options.quality));
  } else {
    stream.Write(EncodeJpeg(ConvertRaster(raster, pf24bit), options.quality));
  }
}

void EncodeAsPng(const Raster& raster, TStream& stream, const EncodeOptions&) {
  EncodePng(raster, stream);
}

void EncodeAsTiff(const Raster& raster, TStream& stream, const EncodeOptions& options) {
  if (raster.Format() == pf15bit || raster.Format() == pf16bit) {
    EncodeTiff(ConvertRaster(raster, pf24bit), stream, options.tiff);
  } else {
    EncodeTiff(raster, stream, options.tiff);
  }
}

/// Functions of formats that are read from memory, for a stream.
template <PictureHeader (*read)(std::span<const uint8_t>)>
PictureHeader HeaderOf(TStream& stream) {
  return read(stream.ReadToEnd());
}

template <Pixels (*decode)(std::span<const uint8_t>, CodecReport*)>
Pixels PixelsOf(TStream& stream, const FrameOptions&, CodecReport* report) {
  return decode(stream.ReadToEnd(), report);
}

template <WrittenPicture (*copy)(std::span<const uint8_t>, const PictureWriting&, TStream&)>
WrittenPicture CopyOf(TStream& source, const PictureWriting& writing, TStream& stream) {
  return copy(source.ReadToEnd(), writing, stream);
}

std::unique_ptr<RowReader> OpenBmpRowsOf(TStream& stream, const FrameOptions&) {
  return OpenBmpRows(stream);
}

std::unique_ptr<RowReader> OpenJpegRowsOf(TStream& stream, const FrameOptions&) {
  return OpenJpegRows(stream);
}

/// PDF is the last row: its header may follow any other bytes.
constexpr Codec kCodecs[] = {
    {.type = PictureType::bmp,
     .name = "bmp",
     .extensions = {"bmp"},
     .matches = detail::IsBmp,
     .decodeStream = DecodeBmp,
     .encode = EncodeAsBmp,
     .keepsAlpha = true,
     .readHeader = ReadBmpHeader,
     .write = WriteBmp,
     .openRows = OpenBmpRowsOf,
     .openWriter = OpenBmpWriter},
    {.type = PictureType::jpeg,
     .name = "jpeg",
     .extensions = {"jpg", "jpeg"},
     .matches = detail::IsJpeg,
     .decodeBytes = DecodeJpeg,
     .readMetadata = detail::ReadJpegMetadata,
     .encode = EncodeAsJpeg,
     .readHeader = HeaderOf<ReadJpegHeader>,
     .readFront = ReadJpegFront,
     .decodePixels = PixelsOf<DecodeJpegPixels>,
     .write = WriteJpeg,
     .copy = CopyOf<CopyJpeg>,
     .openRows = OpenJpegRowsOf,
     .openWriter = OpenJpegWriter},
    {.type = PictureType::png,
     .name = "png",
     .extensions = {"png"},
     .matches = detail::IsPng,
     .decodeBytes = DecodePng,
     .readMetadata = detail::ReadPngMetadata,
     .encode = EncodeAsPng,
     .keepsAlpha = true,
     .keepsTransparentColor = true,
     .readHeader = ReadPngStreamHeader,
     .decodePixels = DecodePngStream,
     .write = WritePng,
     .copy = CopyOf<CopyPng>,
     .openRows = OpenPngRows,
     .openWriter = OpenPngWriter},
    {.type = PictureType::tiff,
     .name = "tiff",
     .extensions = {"tif", "tiff"},
     .matches = detail::IsTiff,
     .decodeFrame = DecodeTiff,
     .encode = EncodeAsTiff,
     .keepsAlpha = true,
     .readHeader = ReadTiffHeader,
     .decodePixels = DecodeTiffPixels,
     .write = WriteTiff,
     .copy = CopyTiff,
     .openRows = OpenTiffRows,
     .openWriter = OpenTiffWriter},
    {.type = PictureType::wmf, .name = "wmf", .extensions = {"wmf"}, .matches = detail::IsWmf},
    {.type = PictureType::emf, .name = "emf", .extensions = {"emf"}, .matches = detail::IsEmf},
    {.type = PictureType::gif,
     .name = "gif",
     .extensions = {"gif"},
     .matches = detail::IsGif,
     .decodeBytes = DecodeGif,
     .readMetadata = detail::ReadGifMetadata,
     .readHeader = HeaderOf<ReadGifHeader>},
    {.type = PictureType::webp,
     .name = "webp",
     .extensions = {"webp"},
     .matches = detail::IsWebp,
     .decodeBytes = DecodeWebp,
     .readMetadata = detail::ReadWebpMetadata,
     .readHeader = HeaderOf<ReadWebpHeader>},
    {.type = PictureType::jp2,
     .name = "jp2",
     .extensions = {"jp2", "j2k", "jpf", "jpx", "j2c"},
     .matches = detail::IsJp2,
     .readHeader = ReadJp2Header,
     .decodePixels = DecodeJp2Pixels},
    {.type = PictureType::heif,
     .name = "heif",
     .extensions = {"heic", "heif", "hif", "avif"},
     .matches = detail::IsHeif,
     .readHeader = ReadHeifHeader,
     .decodePixels = DecodeHeifPixels},
    {.type = PictureType::pdf, .name = "pdf", .extensions = {"pdf"}, .matches = detail::IsPdf},
};

static_assert(detail::kPdfHeaderWindow <= kSignatureBytes);

template <class Condition>
const Codec* Find(Condition condition) {
  const Codec* row = std::find_if(std::begin(kCodecs), std::end(kCodecs), condition);
  return row == std::end(kCodecs) ? nullptr : row;
}

}  // namespace

std::span<const Codec> CodecTable() {
  return kCodecs;
}

const Codec* FindCodec(PictureType type) {
  return Find([=](const Codec& codec) { return codec.type == type; });
}

const Codec* FindFrameCodec(PictureType type) {
  const Codec* codec = FindCodec(type);
  return codec != nullptr && codec->IsForPicturesOnly() ? nullptr : codec;
}

const Codec* FindCodecOfExtension(std::string_view extension) {
  if (extension.starts_with('.')) extension.remove_prefix(1);
  if (extension.empty()) return nullptr;
  return Find([=](const Codec& codec) {
    return std::any_of(
        codec.extensions.begin(), codec.extensions.end(),
        [=](std::string_view candidate) { return CompareText(candidate, extension) == 0; });
  });
}

}  // namespace rasterkit
