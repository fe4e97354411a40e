#include <algorithm>
#include <string_view>

#include <rasterkit/codecs/metadata.h>
#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/webp/webp_chunks.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;

bool StartsWith(Bytes bytes, std::string_view text) {
  return bytes.size() >= text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin(),
                    [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

void AddKind(PictureMetadata& metadata, const char* kind) {
  auto& kinds = metadata.kinds;
  if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) kinds.emplace_back(kind);
}

void AddExif(PictureMetadata& metadata, Bytes block) {
  AddKind(metadata, "exif");
  if (metadata.exif.empty()) metadata.exif = block;
}

void AddJpegSegment(PictureMetadata& metadata, uint8_t marker, Bytes payload) {
  using std::string_view_literals::operator""sv;
  constexpr uint8_t app1 = 0xE1, app2 = 0xE2, app13 = 0xED, comment = 0xFE;
  if (marker == app1 && StartsWith(payload, "Exif\0"sv)) {
    AddExif(metadata, payload.subspan(std::min<size_t>(6, payload.size())));
  } else if (marker == app1 && StartsWith(payload, "http://ns.adobe.com/x"sv)) {
    AddKind(metadata, "xmp");
  } else if (marker == app2 && StartsWith(payload, "ICC_PROFILE\0"sv)) {
    AddKind(metadata, "profile");
  } else if (marker == app13) {
    AddKind(metadata, "iptc");
  } else if (marker == comment) {
    AddKind(metadata, "comment");
  }
}

/// Segments up to the first scan: FF, marker, a big-endian length that counts its own two bytes,
/// payload.
void WalkJpeg(PictureMetadata& metadata, Bytes rest) {
  constexpr uint8_t endOfImage = 0xD9, startOfScan = 0xDA;
  rest = rest.subspan(2);
  while (rest.size() >= 4 && rest[0] == 0xFF) {
    const uint8_t marker = rest[1];
    if (marker == 0xFF) {
      rest = rest.subspan(1);
      continue;
    }
    const size_t length = static_cast<size_t>(rest[2]) << 8 | rest[3];
    if (marker == endOfImage || marker == startOfScan || length < 2 || rest.size() < length + 2)
      return;
    AddJpegSegment(metadata, marker, rest.subspan(4, length - 2));
    rest = rest.subspan(length + 2);
  }
}

void AddPngChunk(PictureMetadata& metadata, Bytes type, Bytes data) {
  if (StartsWith(type, "eXIf")) {
    AddExif(metadata, data);
  } else if (StartsWith(type, "iCCP")) {
    AddKind(metadata, "profile");
  } else if (StartsWith(type, "iTXt") && StartsWith(data, "XML:com.adobe.xmp")) {
    AddKind(metadata, "xmp");
  } else if (StartsWith(type, "tEXt") || StartsWith(type, "zTXt") || StartsWith(type, "iTXt")) {
    AddKind(metadata, "text");
  } else if (StartsWith(type, "acTL") && data.size() >= 4) {
    const uint32_t pictures = uint32_t{data[0]} << 24 | data[1] << 16 | data[2] << 8 | data[3];
    constexpr uint32_t most = 65535;
    metadata.pictures = static_cast<int>(std::clamp<uint32_t>(pictures, 1, most));
  }
}

/// Chunks behind the signature: a big-endian length of the data, four letters, data, checksum.
void WalkPng(PictureMetadata& metadata, Bytes rest) {
  constexpr size_t signature = 8, frame = 12;
  rest = rest.subspan(std::min(signature, rest.size()));
  while (rest.size() >= frame) {
    const uint64_t length =
        static_cast<uint64_t>(rest[0]) << 24 | rest[1] << 16 | rest[2] << 8 | rest[3];
    if (length > rest.size() - frame) return;
    const auto size = static_cast<size_t>(length);
    AddPngChunk(metadata, rest.subspan(4, 4), rest.subspan(8, size));
    rest = rest.subspan(size + frame);
  }
}

/// What follows a header: blocks that begin with a byte each of length, the last one with 0.
Bytes BehindSubBlocks(Bytes rest) {
  while (!rest.empty() && rest[0] != 0) {
    const size_t block = rest[0] + size_t{1};
    rest = rest.subspan(std::min(block, rest.size()));
  }
  return rest.subspan(std::min<size_t>(1, rest.size()));
}

/// Bytes of the palette that a byte of flags announces.
size_t GifPaletteBytes(uint8_t flags) {
  constexpr uint8_t hasPalette = 0x80;
  return (flags & hasPalette) != 0 ? size_t{6} << (flags & 7) : 0;
}

void AddGifExtension(PictureMetadata& metadata, uint8_t label, Bytes blocks) {
  constexpr uint8_t comment = 0xFE, application = 0xFF;
  if (label == comment) AddKind(metadata, "comment");
  if (label != application || blocks.empty()) return;
  if (StartsWith(blocks.subspan(1), "XMP Data")) AddKind(metadata, "xmp");
  if (StartsWith(blocks.subspan(1), "ICCRGBG1")) AddKind(metadata, "profile");
}

/// Behind header and palette: extensions and pictures, each a mark, a header and blocks of data.
void WalkGif(PictureMetadata& metadata, Bytes rest) {
  constexpr size_t screenHeader = 13, flagsAt = 10, pictureHeader = 10, extensionHeader = 2;
  constexpr uint8_t picture = 0x2C, extension = 0x21;
  if (rest.size() < screenHeader) return;
  const size_t palette = GifPaletteBytes(rest[flagsAt]);
  rest = rest.subspan(std::min(screenHeader + palette, rest.size()));
  int pictures = 0;
  while (rest.size() > pictureHeader) {
    size_t header = extensionHeader;
    if (rest[0] == picture) {
      ++pictures;
      // One more byte says how the data are packed.
      header = pictureHeader + GifPaletteBytes(rest[pictureHeader - 1]) + 1;
    } else if (rest[0] == extension) {
      AddGifExtension(metadata, rest[1], rest.subspan(extensionHeader));
    } else {
      break;
    }
    rest = BehindSubBlocks(rest.subspan(std::min(header, rest.size())));
  }
  metadata.pictures = std::max(1, pictures);
}

void WalkWebp(PictureMetadata& metadata, Bytes file) {
  using std::string_view_literals::operator""sv;
  constexpr std::string_view jpegPrefix = "Exif\0\0"sv;
  int pictures = 0;
  for (detail::WebpChunks chunks(file); chunks.Next() && chunks.IsWhole();) {
    if (chunks.IsNamed("EXIF")) {
      // Some writers put a JPEG segment's prefix in front.
      const bool hasPrefix = StartsWith(chunks.Data(), jpegPrefix);
      AddExif(metadata, chunks.Data().subspan(hasPrefix ? jpegPrefix.size() : 0));
    } else if (chunks.IsNamed("XMP ")) {
      AddKind(metadata, "xmp");
    } else if (chunks.IsNamed("ICCP")) {
      AddKind(metadata, "profile");
    } else if (chunks.IsNamed("ANMF")) {
      ++pictures;
    }
  }
  metadata.pictures = std::max(1, pictures);
}

}  // namespace

PictureMetadata ReadMetadata(Bytes bytes) {
  PictureMetadata metadata;
  const PictureType type = SniffPictureType(bytes.first(std::min<size_t>(64, bytes.size())));
  if (type == PictureType::jpeg && bytes.size() >= 2) WalkJpeg(metadata, bytes);
  if (type == PictureType::png) WalkPng(metadata, bytes);
  if (type == PictureType::gif) WalkGif(metadata, bytes);
  if (type == PictureType::webp) WalkWebp(metadata, bytes);
  return metadata;
}

}  // namespace rasterkit
