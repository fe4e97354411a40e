#pragma once

#include <string_view>

/// The messages of the services and the names of file types.
namespace rasterkit {

/// Messages.
inline constexpr std::string_view rsBitmapToLargeToRotate = "Bitmap to large to rotate.";
inline constexpr std::string_view rsPaletteExceeded =
    "Palette überschritten. Benötige 24bit Farbtiefe.";

/// Names of file types in the lists of file dialogs, in front of the patterns. The lists that
/// routines return keep them in English; dialogs show them in the user's language.
inline constexpr std::string_view rsAllSupportedFiles = "All supported files";
inline constexpr std::string_view rsEnhancedMetafile = "Enhanced Windows Metafile";
inline constexpr std::string_view rsWindowsMetafile = "Windows Metafile";

}  // namespace rasterkit
