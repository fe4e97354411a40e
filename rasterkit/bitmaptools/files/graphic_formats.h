#pragma once

#include <array>
#include <string>
#include <string_view>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/codecs/codec_table.h>

namespace rasterkit::detail {

/// A format with a graphic type, and the extension of its world file in upper case.
struct GraphicFormat {
  int type;
  PictureType picture;
  std::string_view worldExtension;
};

/// PDF, GIF and WebP files have no graphic type.
inline constexpr std::array kGraphicFormats = {
    GraphicFormat{gtBmp, PictureType::bmp, "BPW"}, GraphicFormat{gtWmf, PictureType::wmf, ""},
    GraphicFormat{gtEmf, PictureType::emf, ""},    GraphicFormat{gtJpg, PictureType::jpeg, "JGW"},
    GraphicFormat{gtPng, PictureType::png, "PGW"}, GraphicFormat{gtTif, PictureType::tiff, "TFW"},
};

/// The extension of a format's files, in lower case without the dot. Other extensions of a format
/// have no graphic type: ".jpeg" has none, and ".tiff" counts because only three characters of it
/// are compared.
inline std::string_view UsualExtension(const GraphicFormat& format) {
  return FindCodec(format.picture)->extensions.front();
}

inline std::string WithDot(std::string_view extension) {
  return std::string(".").append(extension);
}

}  // namespace rasterkit::detail
