#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

/// The texts of PNG files.
namespace rasterkit::detail {

/// Most bytes of a text or a profile once it is inflated.
inline constexpr size_t kMostInflatedBytes = 16 << 20;

/// The keyword of the text that holds an XMP packet.
inline constexpr std::string_view kXmpKeyword = "XML:com.adobe.xmp";

/// Inflates a zlib stream; nothing if it is damaged or gives more than `most` bytes.
RASTERKIT_EXPORT std::optional<std::vector<uint8_t>> InflateBytes(std::span<const uint8_t> packed,
                                                                  size_t most = kMostInflatedBytes);
/// Deflates to a zlib stream. Same bytes, same result.
RASTERKIT_EXPORT std::vector<uint8_t> DeflateBytes(std::span<const uint8_t> bytes);

/// Latin-1 as UTF-8.
RASTERKIT_EXPORT std::string Utf8OfLatin1(std::string_view text);
/// UTF-8 as Latin-1; nothing if it has other letters or is not UTF-8.
RASTERKIT_EXPORT std::optional<std::string> Latin1OfUtf8(std::string_view text);

/// Reads a chunk tEXt, zTXt or iTXt; nothing if it is damaged.
RASTERKIT_EXPORT std::optional<PictureText> ReadPngText(uint32_t kind,
                                                        std::span<const uint8_t> data);
/// Makes the chunk of a text: tEXt, zTXt, or iTXt where the text is international or has letters
/// that Latin-1 lacks. Nothing if the keyword is not 1 to 79 letters of Latin-1.
RASTERKIT_EXPORT std::optional<OtherBlock> PngTextChunk(const PictureText& text);

/// The block that a text "Raw profile type ..." holds as hexadecimal digits; nothing if the digits
/// do not agree with the stated length.
RASTERKIT_EXPORT std::optional<std::vector<uint8_t>> ReadRawProfile(std::string_view text);
/// The text that holds a block of this name: "iptc".
RASTERKIT_EXPORT std::string RawProfileText(std::string_view name, std::span<const uint8_t> block);

}  // namespace rasterkit::detail
