#include "tool/pictures/save_picture.h"

#include <algorithm>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/output_file.h"

namespace rasterkit::tool {
namespace {

constexpr int kMostEncoders = 64;

/// The codec takes the transparent color from the raster, the bitmap keeps it beside its own.
void Encode(const TBitmap& bitmap, const Codec& codec, TStream& file, const SaveOptions& options) {
  EncodeOptions encoding;
  encoding.quality = options.quality;
  encoding.tiff.compression = options.compression;
  encoding.tiff.threads = std::min(options.threads, kMostEncoders);
  encoding.tiff.geo = options.geo;
  if (!bitmap.Transparent() || !codec.keepsTransparentColor) {
    return codec.encode(bitmap.Content(), file, encoding);
  }
  Raster content = bitmap.Content().Clone();
  content.transparentColor = bitmap.TransparentColor();
  codec.encode(content, file, encoding);
}

const Codec* CodecFor(const std::string& file) {
  const Codec* codec = FindCodecOfExtension(ExtractFileExt(file));
  return codec != nullptr && codec->encode != nullptr ? codec : nullptr;
}

}  // namespace

PictureType WritableType(const std::string& file) {
  const Codec* codec = CodecFor(file);
  return codec != nullptr ? codec->type : PictureType::unknown;
}

std::unique_ptr<AtomicFile> SavePicture(const TBitmap& bitmap, const std::string& file,
                                        const SaveOptions& options) {
  // Names that the verbs accept have a codec; the save dialog can give any name.
  const Codec* named = CodecFor(file);
  const Codec& codec = named != nullptr ? *named : *FindCodec(PictureType::jpeg);
  return WriteOutput(file, options.rules,
                     [&](TStream& stream) { Encode(bitmap, codec, stream, options); });
}

}  // namespace rasterkit::tool
