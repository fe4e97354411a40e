#pragma once

#include <string_view>

/// The window that changes the size in pixels, percent or millimeters.
namespace rasterkit {

/// Width and height in pixels, memory size and its unit.
inline constexpr std::string_view rsSizeFacts = "%d x %d pixels, %s %s";

/// The resolution behind these facts: a number for each direction, or none.
inline constexpr std::string_view rsSizeTwoDpi = "%s x %s dpi";
inline constexpr std::string_view rsSizeNoDpi = "no resolution";

/// Why OK is disabled. The least and the greatest side; width and height; need and limit, each with
/// its unit; the least and the greatest resolution.
inline constexpr std::string_view rsSizeOutOfRange =
    "Width and height must be %d to %d pixels. This size has %s x %s.";
inline constexpr std::string_view rsSizeTooLarge =
    "The limits of this program allow no picture of %s x %s pixels.";
inline constexpr std::string_view rsSizeBeyondMemory =
    "This size needs %s %s of memory. The limit is %s %s.";
inline constexpr std::string_view rsSizeNeedsResolution =
    "Millimeters need a resolution of %d to %d dpi.";
inline constexpr std::string_view rsSizeUnchanged = "The picture has this size.";

/// The controls.
inline constexpr std::string_view rsSizeFilter = "Filter";
inline constexpr std::string_view rsSizeFilterArea = "area (to make smaller)";
inline constexpr std::string_view rsSizeFilterAutomatic = "automatic";
inline constexpr std::string_view rsSizeFilterHint = "How the new pixels follow from the old ones";
inline constexpr std::string_view rsSizeFilterLinear = "linear (smooth)";
inline constexpr std::string_view rsSizeFilterNearest = "nearest pixel (hard edges)";
inline constexpr std::string_view rsSizeHeightHint = "New height in the chosen unit";
inline constexpr std::string_view rsSizeKeep = "Keep proportion";
inline constexpr std::string_view rsSizeNow = "Picture:";
inline constexpr std::string_view rsSizeRedo = "Redo";
inline constexpr std::string_view rsSizeRedoHint = "Makes the change again (Ctrl+Y)";
inline constexpr std::string_view rsSizeResolution = "Resolution";
inline constexpr std::string_view rsSizeResolutionHint =
    "Dots per inch at which millimeters become pixels";
inline constexpr std::string_view rsSizeResult = "Result:";
inline constexpr std::string_view rsSizeUndoHint = "Takes back the last change (Ctrl+Z)";
inline constexpr std::string_view rsSizeUnit = "Unit";
inline constexpr std::string_view rsSizeUnitHint = "Unit of width and height";
inline constexpr std::string_view rsSizeUnitMillimeters = "millimeters";
inline constexpr std::string_view rsSizeUnitPercent = "percent";
inline constexpr std::string_view rsSizeUnitPixels = "pixels";
inline constexpr std::string_view rsSizeWidthHint = "New width in the chosen unit";

}  // namespace rasterkit
