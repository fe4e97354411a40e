#pragma once

#include <string_view>

/// The window in which people edit a picture.
namespace rasterkit {

/// Menus and actions of the window in which people edit a picture.
inline constexpr std::string_view rsEditorMenuFile = "&File";
inline constexpr std::string_view rsEditorMenuEdit = "&Edit";
inline constexpr std::string_view rsEditorMenuPicture = "&Picture";
inline constexpr std::string_view rsEditorMenuView = "&View";
inline constexpr std::string_view rsEditorMenuHelp = "&Help";
inline constexpr std::string_view rsEditorOpen = "&Open...";
inline constexpr std::string_view rsEditorOpenHint = "Opens another file in this window";
inline constexpr std::string_view rsEditorSaveHint = "Writes the file and stays here";
inline constexpr std::string_view rsEditorSaveAs = "Save &as...";
inline constexpr std::string_view rsEditorSaveAsHint = "Writes another file";
inline constexpr std::string_view rsEditorSettings = "Se&ttings of the file...";
inline constexpr std::string_view rsEditorSettingsHint =
    "Changes quality, compression and depth of the file that is written";
inline constexpr std::string_view rsEditorCloseWindow = "&Close";
inline constexpr std::string_view rsEditorCloseWindowHint =
    "Closes the window; asks if work would be lost";
inline constexpr std::string_view rsEditorUndo = "&Undo";
inline constexpr std::string_view rsEditorUndoHint = "Takes back the last step";
inline constexpr std::string_view rsEditorRedo = "&Redo";
inline constexpr std::string_view rsEditorRedoHint = "Makes the step again that was taken back";
inline constexpr std::string_view rsEditorTurnLeft = "Turn &left";
inline constexpr std::string_view rsEditorTurnLeftHint =
    "Turns the picture by a quarter to the left";
inline constexpr std::string_view rsEditorTurnRight = "Turn &right";
inline constexpr std::string_view rsEditorTurnRightHint =
    "Turns the picture by a quarter to the right";
inline constexpr std::string_view rsEditorMirror = "&Mirror";
inline constexpr std::string_view rsEditorMirrorHint = "Exchanges left and right";
inline constexpr std::string_view rsEditorFlip = "&Flip";
inline constexpr std::string_view rsEditorFlipHint = "Exchanges top and bottom";
inline constexpr std::string_view rsEditorAngle = "R&otate by an angle...";
inline constexpr std::string_view rsEditorAngleHint = "Goes to the number field of the angle";
inline constexpr std::string_view rsEditorCrop = "&Crop...";
inline constexpr std::string_view rsEditorCropHint = "Keeps a part of the picture";
inline constexpr std::string_view rsEditorResize = "&Size...";
inline constexpr std::string_view rsEditorResizeHint = "Gives the picture another size";
inline constexpr std::string_view rsEditorValues = "&Values...";
inline constexpr std::string_view rsEditorValuesHint =
    "Changes brightness, contrast, sharpness and colors";
inline constexpr std::string_view rsEditorGrayscale = "&Gray";
inline constexpr std::string_view rsEditorGrayscaleHint = "Replaces colors by shades of gray";
inline constexpr std::string_view rsEditorMono = "&Black and white...";
inline constexpr std::string_view rsEditorMonoHint = "Replaces colors by black and white";
inline constexpr std::string_view rsEditor256Colors = "2&56 colors";
inline constexpr std::string_view rsEditor256ColorsHint =
    "Reduces the picture to a palette of 256 colors";
inline constexpr std::string_view rsEditorFit = "&Fit";
inline constexpr std::string_view rsEditorActualSize = "&Actual size";
inline constexpr std::string_view rsEditorActualSizeHint =
    "Shows each pixel of the picture as one of the screen";
inline constexpr std::string_view rsEditorZoomIn = "Zoom &in";
inline constexpr std::string_view rsEditorZoomInHint = "Shows the picture larger";
inline constexpr std::string_view rsEditorZoomOut = "Zoom &out";
inline constexpr std::string_view rsEditorZoomOutHint = "Shows the picture smaller";
inline constexpr std::string_view rsEditorShowPages = "List of &pages";
inline constexpr std::string_view rsEditorShowPagesHint =
    "Shows or hides the pages of the document";
inline constexpr std::string_view rsEditorShowSteps = "List of &steps";
inline constexpr std::string_view rsEditorShowStepsHint =
    "Shows or hides the steps that lead to the picture";
inline constexpr std::string_view rsEditorPreviousPage = "P&revious page";
inline constexpr std::string_view rsEditorPreviousPageHint = "Goes to the page before";
inline constexpr std::string_view rsEditorNextPage = "&Next page";
inline constexpr std::string_view rsEditorNextPageHint = "Goes to the page after";
inline constexpr std::string_view rsEditorFirstPage = "Firs&t page";
inline constexpr std::string_view rsEditorFirstPageHint = "Goes to the first page";
inline constexpr std::string_view rsEditorLastPage = "&Last page";
inline constexpr std::string_view rsEditorLastPageHint = "Goes to the last page";
inline constexpr std::string_view rsEditorHelp = "&Documentation";
inline constexpr std::string_view rsEditorHelpHint = "Opens the documentation";

/// The picture, lists and fields.
inline constexpr std::string_view rsEditorWindow = "Edit picture";
inline constexpr std::string_view rsEditorTools = "Tools";
inline constexpr std::string_view rsEditorToolsHelp =
    "Arrow keys go from tool to tool, Space and Enter press one, F6 comes back here";
inline constexpr std::string_view rsEditorPicture = "The picture";
inline constexpr std::string_view rsEditorPictureHelp =
    "The wheel, plus and minus zoom, dragging and arrow keys move the picture";
inline constexpr std::string_view rsEditorPictureHint = "Turn the wheel to zoom, drag to move";
inline constexpr std::string_view rsEditorNoPicture = "No picture: open a file, or drop one here";
inline constexpr std::string_view rsEditorPages = "Page&s";
inline constexpr std::string_view rsEditorPagesHint =
    "The pages of the document; Enter or a click shows one";
inline constexpr std::string_view rsEditorSteps = "S&teps";
inline constexpr std::string_view rsEditorStepsHint =
    "The steps of the picture; Enter or a click goes back to one, or forward";
inline constexpr std::string_view rsEditorAsOpened = "As opened";
inline constexpr std::string_view rsEditorResolution = "&Resolution [dpi]";
inline constexpr std::string_view rsEditorResolutionHint =
    "Dots per inch at which the page is drawn; type a number and press Enter";
inline constexpr std::string_view rsEditorAngleField = "&Angle [°]";
inline constexpr std::string_view rsEditorAngleFieldHint =
    "Degrees, counter-clockwise; Enter rotates the picture";
inline constexpr std::string_view rsEditorAngleFieldName = "Angle in degrees";
inline constexpr std::string_view rsEditorRotate = "R&otate";
inline constexpr std::string_view rsEditorRotateHint = "Rotates the picture by the angle";

/// The number of pages.
inline constexpr std::string_view rsEditorPage = "Pa&ge (of %d)";

/// For screen readers and in the list: the number of a page.
inline constexpr std::string_view rsEditorPageNumber = "Page %d";

/// Percent.
inline constexpr std::string_view rsEditorZoom = "Zoom %d %%";

/// What saving does: lost things, and how many more there are.

/// Jobs.
inline constexpr std::string_view rsEditorCancelJobName = "Cancel the running work";
inline constexpr std::string_view rsEditorCancelJobHint =
    "Stops what is running; the picture stays as it was (Escape)";
inline constexpr std::string_view rsEditorNoMemory = "Not enough memory";
inline constexpr std::string_view rsEditorUnknownFault = "Unknown fault";

/// Buttons of the window.
inline constexpr std::string_view rsEditorOkHint = "Writes the file and closes the window";
inline constexpr std::string_view rsEditorCancelHint =
    "Closes the window, or stops what is running; asks if work would be lost";

/// Answers to questions.
inline constexpr std::string_view rsEditorAnswerDiscard = "&Discard";
inline constexpr std::string_view rsEditorAnswerCancel = "&Cancel";
inline constexpr std::string_view rsEditorAnswerReplace = "&Replace";
inline constexpr std::string_view rsEditorAnswerTakeUp = "&Take up";

/// Help without installed documentation.
inline constexpr std::string_view rsEditorHelpText =
    "Steps are kept in a list and run on the picture as it was opened. Undo and the list of steps"
    " go back at any time. OK writes the file that was named, and asks before it replaces one. "
    "The compressed pixels of a file are kept where that is possible; the window says so before "
    "it writes.";
inline constexpr std::string_view rsEditorHelpKeys = "Keys";
inline constexpr std::string_view rsEditorHelpOf = "Help on the editor";

/// File name.
inline constexpr std::string_view rsEditorTarget = "OK writes %s";

/// File name, and the page of a document.
inline constexpr std::string_view rsEditorTitle = "%s - Edit picture";

}  // namespace rasterkit
