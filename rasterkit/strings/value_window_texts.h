#pragma once

#include <string_view>

/// The windows in which people choose values of colors and the threshold of black and white.
namespace rasterkit {

inline constexpr std::string_view rsReset = "Reset";
inline constexpr std::string_view rsResetValuesHint =
    "Sets all values back, so that nothing is changed";
inline constexpr std::string_view rsThresholdTitle = "Black and white";

/// What is above the preview.
inline constexpr std::string_view rsValuesBefore = "Bef&ore";
inline constexpr std::string_view rsValuesBeforeHint =
    "Shows the original while it is held down; so does the key B";
inline constexpr std::string_view rsValuesActualSizeHint =
    "Shows one pixel of the picture for one of the screen, exactly as OK makes it";
inline constexpr std::string_view rsValuesLoupe = "&Loupe";
inline constexpr std::string_view rsValuesLoupeHint =
    "Shows the pixels under the cursor in their actual size where the picture is shown smaller";
inline constexpr std::string_view rsValuesModeChanged = "Changed only";
inline constexpr std::string_view rsValuesModeSideBySide = "Side by side";
inline constexpr std::string_view rsValuesModeSplit = "Split";
inline constexpr std::string_view rsValuesPreviewHint =
    "Drag the picture or the divider; the wheel zooms";
inline constexpr std::string_view rsValuesPreviewKeys =
    "Arrow keys move the picture or the loupe, with Ctrl the divider. Plus and minus zoom.";
inline constexpr std::string_view rsValuesView = "Vie&w";
inline constexpr std::string_view rsValuesViewHint = "How original and changed picture are shown";
inline constexpr std::string_view rsValuesZoomIn = "Zoom in";
inline constexpr std::string_view rsValuesZoomOut = "Zoom out";

/// What is beside the preview.
inline constexpr std::string_view rsValuesHistogram = "Histogram";
inline constexpr std::string_view rsValuesHistogramHint =
    "How often each brightness occurs in the changed picture; lines for red, green and blue";
inline constexpr std::string_view rsThresholdHistogramHint =
    "How often each gray value occurs; drag the line to the threshold. The triangle marks the "
    "automatic threshold.";
/// Percentages of the pixels.
inline constexpr std::string_view rsValuesHistogramEnds = "Black %d %%, white %d %%";
/// The darkest and the brightest gray value, and the mean.
inline constexpr std::string_view rsValuesHistogramRange = "From %d to %d, mean %d";
inline constexpr std::string_view rsValuesLast = "Las&t values";
inline constexpr std::string_view rsValuesLastHint = "Takes the values of the last time";
inline constexpr std::string_view rsValuesRedo = "Re&do";
inline constexpr std::string_view rsValuesRedoHint = "Makes the change again that was taken back";
inline constexpr std::string_view rsValuesUndo = "U&ndo";
inline constexpr std::string_view rsValuesUndoHint = "Takes back the last change of a value";
inline constexpr std::string_view rsValuesResetOneHint =
    "Sets this value back (Delete on the track bar, or double click on the label)";
inline constexpr std::string_view rsThresholdAutomatic = "Auto&matic";
inline constexpr std::string_view rsThresholdAutomaticHint =
    "Finds the threshold that separates dark and light best, for each picture anew";
/// Otsu's threshold.
inline constexpr std::string_view rsThresholdFound = "Automatic threshold: %d";

}  // namespace rasterkit
