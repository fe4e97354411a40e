#pragma once

#include <string_view>

/// The settings of a graphic that is saved.
namespace rasterkit {

inline constexpr std::string_view rsParas16Colors = "16 colors (4 bit)";
inline constexpr std::string_view rsParas256Colors = "256 colors (8 bit)";
inline constexpr std::string_view rsParasBlackWhite = "Black and white (1 bit)";
inline constexpr std::string_view rsParasBmpSize = "Size of Windows bitmap";
inline constexpr std::string_view rsParasCaption = "Graphics settings";
inline constexpr std::string_view rsParasColors = "Color depth";
inline constexpr std::string_view rsParasColorsHint = "Colors that the picture may have";
inline constexpr std::string_view rsParasJpeg = "JPeg";
inline constexpr std::string_view rsParasMaxCompression = "Maximum compression";
inline constexpr std::string_view rsParasMaxQuality = "Maximum quality";
inline constexpr std::string_view rsParasMinQuality = "Minimum quality";
inline constexpr std::string_view rsParasMm = "Size in mm";
inline constexpr std::string_view rsParasNoCompression = "No compression";
inline constexpr std::string_view rsParasPixels = "Bitmap size [pixels]";
inline constexpr std::string_view rsParasPng = "PNG Format";
inline constexpr std::string_view rsParasQuality = "Compression quality";
inline constexpr std::string_view rsParasQualityHint = "Smaller file or better picture";
inline constexpr std::string_view rsParasResolution = "Resolution / size";
inline constexpr std::string_view rsParasResolutionHint =
    "Dots per inch: how large the picture is on paper";
inline constexpr std::string_view rsParasSettings = "Settings";
inline constexpr std::string_view rsParasTiff = "TIFF";
inline constexpr std::string_view rsParasTrueColor = "True color (24 bit)";
inline constexpr std::string_view rsParasType = "Graphics type";
inline constexpr std::string_view rsParasTypeHint = "Kind of the file";
inline constexpr std::string_view rsParasWidthHeight = "Width x Height";
inline constexpr std::string_view rsParasWindowsBitmap = "Windows bitmap";

/// The units of "Size of Windows bitmap".
inline constexpr std::string_view rsUnitByte = "[byte]";
inline constexpr std::string_view rsUnitKilobyte = "[kB]";
inline constexpr std::string_view rsUnitMegabyte = "[MB]";

}  // namespace rasterkit
