#pragma once

#include <string_view>

/// The editor of graphics and PDF pages.
namespace rasterkit {

/// Titles and messages.
inline constexpr std::string_view rsEditBitmap = "Edit bitmap";
inline constexpr std::string_view rsEditConvertPdf = "Convert pdf to png";
inline constexpr std::string_view rsEditNoMemory =
    "Not enough RAM available for the image! Try a lower DPI-setting.";
inline constexpr std::string_view rsEditUnreadable = "The file %s cannot be read as a picture.";

/// A file that exists, in another folder than the one in which the user chose the name.
inline constexpr std::string_view rsEditOverwrite =
    "The picture is saved as %s. This file exists already. Overwrite it?";

/// Width and height in pixels, both in millimeters, memory size and its unit.
inline constexpr std::string_view rsEditPageSize = "%d * %d px, %d * %d mm (%s [%s])";

/// The number of pages.
inline constexpr std::string_view rsEditPages = "Page (total No. of pages %d)";

/// The class of an error and its text.
inline constexpr std::string_view rsEditPdfFailed =
    "PDF could not be rendered! Please contact Tarnwick Hotline.\r\nOriginal error was \"%s\": %s";

/// The controls.
inline constexpr std::string_view rsEdit256Colors = "Convert to 8-Bit (256 colors)";
inline constexpr std::string_view rsEditBlackWhite = "Use black/white image";
inline constexpr std::string_view rsEditCut = "Cut bitmap";
inline constexpr std::string_view rsEditDimensions = "Bitmap dimensions: ";
inline constexpr std::string_view rsEditFit = "Fit BMP in dialog size";
inline constexpr std::string_view rsEditGray = "Convert to grayscale";
inline constexpr std::string_view rsEditImage = "Edit image";
inline constexpr std::string_view rsEditMirror = "Mirror image";
inline constexpr std::string_view rsEditOpen = "Open file...";
inline constexpr std::string_view rsEditOpenName = "Open file";
inline constexpr std::string_view rsEditOriginalSize = "View BMP in original size";
inline constexpr std::string_view rsEditPage = "Page";
inline constexpr std::string_view rsEditPageHint = "Page of the document";
inline constexpr std::string_view rsEditPageSizeCaption = "Page at this resolution: ";
inline constexpr std::string_view rsEditPictureHelp =
    "Drag to draw a rectangle. Arrow keys move it, with Shift by 10 pixels, with Ctrl they resize "
    "it. The wheel zooms, the middle button pans. Ctrl+H changes the size, Ctrl+Z undoes.";
inline constexpr std::string_view rsEditRendering = "The page is being rendered ...";
inline constexpr std::string_view rsEditRenderingName = "The page is being rendered";
inline constexpr std::string_view rsEditResolution = "Resolution [dpi]";
inline constexpr std::string_view rsEditResolutionHint =
    "Dots per inch of the picture; type a number and press Enter, or choose one";
inline constexpr std::string_view rsEditResolutionName = "Resolution in dots per inch";
inline constexpr std::string_view rsEditRotation = "Rotation [°]";
inline constexpr std::string_view rsEditRotationHint =
    "Degrees, clockwise; type a number and press Enter, or choose one";
inline constexpr std::string_view rsEditRotationName = "Rotation in degrees";
inline constexpr std::string_view rsEditSave = "Save bitmap as...";
inline constexpr std::string_view rsEditSaveName = "Save bitmap as";
inline constexpr std::string_view rsEditSize = "Change size...";
inline constexpr std::string_view rsEditWhole = "Remove rectangle";

}  // namespace rasterkit
