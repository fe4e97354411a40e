#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

/// The texts that users see, in one table so that they can be translated. This room lies below
/// everything and includes nothing of the house.
namespace rasterkit {

/// Keys of the table. A key is its own English text.
inline constexpr std::string_view rsAllSupportedFiles = "All supported files";
inline constexpr std::string_view rsBitmapToLargeToRotate = "Bitmap to large to rotate.";
inline constexpr std::string_view rsPaletteExceeded =
    "Palette überschritten. Benötige 24bit Farbtiefe.";

// Crop tool. Width, height, memory size and its unit.
inline constexpr std::string_view rsSizeOfPicture = "%d * %d px (%s [%s])";
inline constexpr std::string_view rsInfoWidth = "Width=%d";
inline constexpr std::string_view rsInfoHeight = "Height=%d";
inline constexpr std::string_view rsInfoBitDepth = "Bit depth[bit]=%d";
inline constexpr std::string_view rsInfoCutWidth = "Cut width=%d";
inline constexpr std::string_view rsInfoCutHeight = "Cut height=%d";
/// Unit, then memory size.
inline constexpr std::string_view rsInfoCutMemsize = "Cut memsize [%s]=%s";

/// Every key, for whoever writes a translation.
[[gnu::visibility("default")]] std::span<const std::string_view> ResourceStringKeys();

/// The text for a key (UTF-8): what the translator makes of it, or the key itself.
[[gnu::visibility("default")]] std::string ResourceString(std::string_view key);

/// Turns a key into the user's language; an empty answer means that it has no word for it.
using TTranslator = std::function<std::string(std::string_view key)>;

/// Installs the translator, or removes it when empty. Safe on any thread; the translator is called
/// on the thread that needs a text, by several at once where need be.
[[gnu::visibility("default")]] void SetTranslator(TTranslator translator);

}  // namespace rasterkit
