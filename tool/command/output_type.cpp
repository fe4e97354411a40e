#include "tool/command/output_type.h"

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit::tool {

PictureType WritableType(const std::string& file) {
  const Codec* codec = FindCodecOfExtension(ExtractFileExt(file));
  return codec != nullptr && CanWrite(codec->type) ? codec->type : PictureType::unknown;
}

}  // namespace rasterkit::tool
