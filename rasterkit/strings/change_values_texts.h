#pragma once

#include <string_view>

/// The dialog that changes brightness, contrast, sharpness and colors.
namespace rasterkit {

inline constexpr std::string_view rsBlue = "Blue";
inline constexpr std::string_view rsBlueHint =
    "Percentage by which blue becomes stronger or weaker";
inline constexpr std::string_view rsBrightness = "Brightness [%]";
inline constexpr std::string_view rsBrightnessHint = "Lighter above 0, darker below";
inline constexpr std::string_view rsChangeBitmapValues = "Change values";
inline constexpr std::string_view rsChanged = "Changed";
inline constexpr std::string_view rsChangedHint = "What OK makes of the picture";
inline constexpr std::string_view rsChangedPicture = "Changed picture";
inline constexpr std::string_view rsColor = "Color";
inline constexpr std::string_view rsColorHint = "The color of the three numbers";
inline constexpr std::string_view rsContrast = "Contrast [%]";
inline constexpr std::string_view rsContrastHint = "More contrast above 0, less below";
inline constexpr std::string_view rsGrayValue = "Gray value";
inline constexpr std::string_view rsGrayValueHint = "Darker colors become black, all others white";
inline constexpr std::string_view rsGreen = "Green";
inline constexpr std::string_view rsGreenHint =
    "Percentage by which green becomes stronger or weaker";
inline constexpr std::string_view rsOptions = "Options";
inline constexpr std::string_view rsOriginal = "Original";
inline constexpr std::string_view rsOriginalHint =
    "Drag the picture, or use the arrow keys, to see another part of it";
inline constexpr std::string_view rsOriginalPicture = "Original picture";
inline constexpr std::string_view rsRed = "Red";
inline constexpr std::string_view rsRedHint = "Percentage by which red becomes stronger or weaker";
inline constexpr std::string_view rsRefreshValuesHint =
    "Sets everything to 0; from then on contrast, sharpness and colors count as well";
inline constexpr std::string_view rsSelectGrayValue = "Select gray value";
inline constexpr std::string_view rsSharpen = "Sharpen [%]";
inline constexpr std::string_view rsSharpenHint = "Sharper above 0, softer below";

}  // namespace rasterkit
