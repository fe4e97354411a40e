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

/// The buttons that end a dialog, and what they say about themselves.
inline constexpr std::string_view rsCancel = "Cancel";
inline constexpr std::string_view rsCancelHint = "Closes without changes";
inline constexpr std::string_view rsHelp = "Help";
inline constexpr std::string_view rsHelpHint = "Shows help";
inline constexpr std::string_view rsOk = "OK";
inline constexpr std::string_view rsOkHint = "Takes over the changes and closes";
inline constexpr std::string_view rsRefresh = "Refresh";
inline constexpr std::string_view rsRefreshHint = "Sets everything back";

/// The picture file dialogs and their preview; "%s" is a file's name.
inline constexpr std::string_view rsFileIsFolder = "%s is a folder.";
inline constexpr std::string_view rsFileNameTooLong = "The name %s is too long.";
inline constexpr std::string_view rsNoSuchFolder = "There is no folder %s.";
inline constexpr std::string_view rsOpenPicture = "Open picture";
inline constexpr std::string_view rsPreview = "Preview";
inline constexpr std::string_view rsPreviewBroken = "The file cannot be read as a picture";
inline constexpr std::string_view rsPreviewLoading = "Loading ...";
inline constexpr std::string_view rsPreviewNone = "No preview";
inline constexpr std::string_view rsPreviewTooLarge = "Too large for a preview";
inline constexpr std::string_view rsReplaceFile = "%s exists already.\nReplace it?";
inline constexpr std::string_view rsSavePicture = "Save picture";

/// What a question is answered with.
inline constexpr std::string_view rsNo = "&No";
inline constexpr std::string_view rsYes = "&Yes";

/// The list of a folder's files. "%s" is a reason of the system.
inline constexpr std::string_view rsFileListDate = "Date";
inline constexpr std::string_view rsFileListEmpty = "There are no files of this kind";
inline constexpr std::string_view rsFileListGone = "There is no such folder";
inline constexpr std::string_view rsFileListName = "Name";
inline constexpr std::string_view rsFileListReading = "The folder is being read ...";
inline constexpr std::string_view rsFileListSize = "Size";
inline constexpr std::string_view rsFileListUnreadable = "The folder cannot be read: %s";

/// The save window with a list of files; "%s" is a file's name.
inline constexpr std::string_view rsSaveAllFiles = "All files";
inline constexpr std::string_view rsSaveButton = "Save";
inline constexpr std::string_view rsSaveButtonHint = "Saves under this name";
inline constexpr std::string_view rsSaveChooseFolder = "Choose a folder";
inline constexpr std::string_view rsSaveChooseFolderHint = "Chooses another folder";
inline constexpr std::string_view rsSaveDetail = "Detail";
inline constexpr std::string_view rsSaveFileExists = "File already exists:\r\"%s\"\rOverwrite?";
/// Shown as it is, its place for a name unfilled: the prompt of the folder chooser.
inline constexpr std::string_view rsSaveFileExistsPrompt =
    "File \"%s\" already exists - overwrite?";
inline constexpr std::string_view rsSaveFiles = "Files of the folder";
inline constexpr std::string_view rsSaveFilesHint =
    "Choose a file to take its name; Enter opens a folder, Backspace leaves it";
inline constexpr std::string_view rsSaveFilter = "Filter: ";
inline constexpr std::string_view rsSaveFilterHint = "Kind of the file, and which files are listed";
inline constexpr std::string_view rsSaveFolderUp = "One folder up";
inline constexpr std::string_view rsSaveGraphics = "Save Graphics";
inline constexpr std::string_view rsSaveList = "List";
inline constexpr std::string_view rsSaveName = "File name:";
inline constexpr std::string_view rsSaveNameHint = "Name of the file; a folder may stand before it";
inline constexpr std::string_view rsSaveNameIsExtension = "%s is an extension without a name.";
inline constexpr std::string_view rsSaveNameReserved = "The name %s is reserved by the system.";
inline constexpr std::string_view rsSaveNameUnfit =
    "The name %s has characters that a file's name cannot have.";
inline constexpr std::string_view rsSaveOptionsHint = "Settings for the file";
inline constexpr std::string_view rsSavePath = "Path:";
inline constexpr std::string_view rsSavePathHint =
    "The folder that is listed; type another one and press Enter";

/// The crop tool. Width, height, memory size and its unit.
inline constexpr std::string_view rsSizeOfPicture = "%d * %d px (%s [%s])";
inline constexpr std::string_view rsInfoWidth = "Width=%d";
inline constexpr std::string_view rsInfoHeight = "Height=%d";
inline constexpr std::string_view rsInfoBitDepth = "Bit depth[bit]=%d";
inline constexpr std::string_view rsInfoCutWidth = "Cut width=%d";
inline constexpr std::string_view rsInfoCutHeight = "Cut height=%d";
/// For screen readers: left, top, width and height in pixels of the picture.
inline constexpr std::string_view rsCutForReaders =
    "Rectangle: left %d, top %d, width %d, height %d";
inline constexpr std::string_view rsNoCutForReaders = "No rectangle";
/// Unit, then memory size.
inline constexpr std::string_view rsInfoCutMemsize = "Cut memsize [%s]=%s";

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

/// The change-values dialog.
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

/// The change-size dialog.
inline constexpr std::string_view rsChangeSize = "Change Size";
inline constexpr std::string_view rsHeightHint = "New height in pixels";
inline constexpr std::string_view rsProportional = "proportional";
inline constexpr std::string_view rsProportionalHint =
    "Each number follows the other, so that the picture keeps its shape";
inline constexpr std::string_view rsWidthAndHeight = "Width / Height";
inline constexpr std::string_view rsWidthHint = "New width in pixels";

/// The editor of graphics and PDF pages.
inline constexpr std::string_view rsEditBitmap = "Edit bitmap";
inline constexpr std::string_view rsEditConvertPdf = "Convert pdf to png";
inline constexpr std::string_view rsEditNoMemory =
    "Not enough RAM available for the image! Try a lower DPI-setting.";
/// Width and height in pixels, both in millimetres, memory size and its unit.
inline constexpr std::string_view rsEditPageSize = "%d * %d px, %d * %d mm (%s [%s])";
inline constexpr std::string_view rsEditPages = "Page (total No. of pages %d)";
/// An error's class and its text.
inline constexpr std::string_view rsEditPdfFailed =
    "PDF could not be rendered! Please contact Tarnwick Hotline.\r\nOriginal error was \"%s\": %s";
inline constexpr std::string_view rsEditUnreadable = "The file %s cannot be read as a picture.";

/// Its controls.
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

/// The settings of a graphic to be saved. The units stand behind "Size of Windows bitmap".
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
inline constexpr std::string_view rsUnitByte = "[byte]";
inline constexpr std::string_view rsUnitKilobyte = "[kB]";
inline constexpr std::string_view rsUnitMegabyte = "[MB]";

/// Names of file types in the lists of file dialogs: what stands in front of the patterns. The
/// lists that routines answer with keep them as they are; dialogs show them in the user's language.
inline constexpr std::string_view rsEnhancedMetafile = "Enhanced Windows Metafile";
inline constexpr std::string_view rsWindowsMetafile = "Windows Metafile";

/// Every key, for whoever writes a translation.
[[gnu::visibility("default")]] std::span<const std::string_view> ResourceStringKeys();

/// The text for a key (UTF-8): what the translator makes of it, or the key itself. Where no
/// translator is installed, the catalogue is asked.
[[gnu::visibility("default")]] std::string ResourceString(std::string_view key);

/// Turns a key into the user's language; an empty answer means that it has no word for it.
using TTranslator = std::function<std::string(std::string_view key)>;

/// Installs the translator, or removes it when empty. Safe on any thread; the translator is called
/// on the thread that needs a text, by several at once where need be.
[[gnu::visibility("default")]] void SetTranslator(TTranslator translator);

/// Installs what is asked for as long as the host has installed no translator of its own, or
/// removes it when empty: the place for the catalogues that come with the dialogs. As safe as the
/// above.
[[gnu::visibility("default")]] void SetCatalogue(TTranslator catalogue);

}  // namespace rasterkit
