#pragma once

#include <string_view>

/// The crop tool and its window.
namespace rasterkit {

/// Width, height, memory size and its unit.
inline constexpr std::string_view rsSizeOfPicture = "%d * %d px (%s [%s])";

/// The facts about the picture and the part that is cut.
inline constexpr std::string_view rsInfoWidth = "Width=%d";
inline constexpr std::string_view rsInfoHeight = "Height=%d";
inline constexpr std::string_view rsInfoBitDepth = "Bit depth[bit]=%d";
inline constexpr std::string_view rsInfoCutWidth = "Cut width=%d";
inline constexpr std::string_view rsInfoCutHeight = "Cut height=%d";

/// Unit, then memory size.
inline constexpr std::string_view rsInfoCutMemsize = "Cut memsize [%s]=%s";

/// For screen readers: left, top, width and height in pixels of the picture.
inline constexpr std::string_view rsCutForReaders =
    "Rectangle: left %d, top %d, width %d, height %d";

/// For screen readers: the whole picture is kept.
inline constexpr std::string_view rsNoCutForReaders = "No rectangle";

/// The window around the crop tool.
inline constexpr std::string_view rsCropActualSize = "Actual size";
inline constexpr std::string_view rsCropActualSizeHint = "Shows the picture pixel by pixel";
inline constexpr std::string_view rsCropDimensionsCaption = "Bitmap dimensions:";
inline constexpr std::string_view rsCropFit = "Fit";
inline constexpr std::string_view rsCropFitHint = "Shows the whole picture";
inline constexpr std::string_view rsCropFitName = "Fit into the window";
inline constexpr std::string_view rsCropHeight = "Height";
inline constexpr std::string_view rsCropHeightHint = "Height of the rectangle in pixels";
inline constexpr std::string_view rsCropLeft = "Left";
inline constexpr std::string_view rsCropLeftHint =
    "Left edge of the rectangle in pixels of the picture";
inline constexpr std::string_view rsCropLossless =
    "Lossless: the blocks of the JPEG file are moved";
inline constexpr std::string_view rsCropNotLossless =
    "Not lossless: the pixels are compressed again";
inline constexpr std::string_view rsCropPicture = "Crop picture";
inline constexpr std::string_view rsCropRectangle = "Picture with crop rectangle";
inline constexpr std::string_view rsCropRectangleHelp =
    "Drag to draw a rectangle. Arrow keys move it, with Shift by 10 pixels, with Ctrl they resize "
    "it. The wheel, plus and minus zoom, the middle button and arrow keys with Alt pan.";
inline constexpr std::string_view rsCropRectangleHint =
    "Drag to draw, move or resize the rectangle; turn the wheel to zoom";
inline constexpr std::string_view rsCropTop = "Top";
inline constexpr std::string_view rsCropTopHint =
    "Top edge of the rectangle in pixels of the picture";
inline constexpr std::string_view rsCropUndo = "Undo";
inline constexpr std::string_view rsCropUndoHint =
    "Takes back the last change of the rectangle (Ctrl+Z)";
inline constexpr std::string_view rsCropWhole = "Whole picture";
inline constexpr std::string_view rsCropWholeHint = "Removes the rectangle (Delete)";
inline constexpr std::string_view rsCropWidth = "Width";
inline constexpr std::string_view rsCropWidthHint = "Width of the rectangle in pixels";

}  // namespace rasterkit
