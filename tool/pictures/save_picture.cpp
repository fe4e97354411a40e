#include "tool/pictures/save_picture.h"

#include <algorithm>
#include <new>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"

namespace rasterkit::tool {
namespace {

constexpr int kMostEncoders = 64;

/// The codec takes the transparent color from the raster, the bitmap keeps it beside its own.
void Encode(const TBitmap& bitmap, const Codec& codec, AtomicFile& file,
            const SaveOptions& options) {
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

void SavePicture(const TBitmap& bitmap, const std::string& name, const SaveOptions& options) {
  try {
    const WholeOutput whole;
    AtomicFile file(name);
    const Codec* codec = CodecFor(name);
    // Names that the verbs accept have a codec; the save dialog can give any name.
    Encode(bitmap, codec != nullptr ? *codec : *FindCodec(PictureType::jpeg), file, options);
    StopIfInterrupted();
    file.Commit();
  } catch (const Error& error) {
    throw Failure(exitOutputNotWritten, name + ": " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitOutputNotWritten, name + ": out of memory");
  }
}

}  // namespace rasterkit::tool
