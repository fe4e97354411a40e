#pragma once

#include <string_view>

/// The windows in which people choose name, kind and settings of a picture file.
namespace rasterkit {

/// Titles and parts of the window.
inline constexpr std::string_view rsSavingTitle = "Save picture as";
inline constexpr std::string_view rsSavingSettingsTitle = "Settings of the file";
inline constexpr std::string_view rsSavingOpenTitle = "Open a picture";
inline constexpr std::string_view rsSavingFolderPage = "Fo&lder";
inline constexpr std::string_view rsSavingSettingsPage = "Se&ttings and 1:1 view";
inline constexpr std::string_view rsSavingFolderPageHint = "Shows places and files";
inline constexpr std::string_view rsSavingSettingsPageHint =
    "Shows the settings of the file and the picture before and after saving";
inline constexpr std::string_view rsSavingPlaces = "Pla&ces";
inline constexpr std::string_view rsSavingFiles = "F&iles of the folder";
inline constexpr std::string_view rsSavingPlacesHint = "Opens one of these folders";
inline constexpr std::string_view rsSavingPlaceHome = "Home";
inline constexpr std::string_view rsSavingPlaceDesktop = "Desktop";
inline constexpr std::string_view rsSavingPlaceDocuments = "Documents";
inline constexpr std::string_view rsSavingPlacePictures = "Pictures";
inline constexpr std::string_view rsSavingPlaceDownloads = "Downloads";
inline constexpr std::string_view rsSavingPlaceOfPicture = "Folder of the picture";
inline constexpr std::string_view rsSavingFolder = "In f&older:";
inline constexpr std::string_view rsSavingUpHint = "Opens the folder above";
inline constexpr std::string_view rsSavingName = "&Name:";
inline constexpr std::string_view rsSavingNameHint =
    "Name of the file; a folder may stand before it. The ending decides on the kind";
inline constexpr std::string_view rsSavingKind = "&Kind:";
inline constexpr std::string_view rsSavingKindHint =
    "Kind of the file; the ending of the name follows";
inline constexpr std::string_view rsSavingFile = "&File:";
inline constexpr std::string_view rsSavingFileHint = "The file that is written";
inline constexpr std::string_view rsSavingOtherName = "&Other name ...";
inline constexpr std::string_view rsSavingOtherNameHint = "Chooses another folder or name";
inline constexpr std::string_view rsSavingSave = "&Save";
inline constexpr std::string_view rsSavingSaveHint = "Saves the picture with these settings";

/// Kinds of files in the list. "%s" are the usual endings of their names.
inline constexpr std::string_view rsSavingKindBmp = "BMP bitmap (%s)";
inline constexpr std::string_view rsSavingKindJpeg = "JPEG photograph (%s)";
inline constexpr std::string_view rsSavingKindPng = "PNG picture (%s)";
inline constexpr std::string_view rsSavingKindTiff = "TIFF picture (%s)";
inline constexpr std::string_view rsSavingKindOther = "%s picture (%s)";
inline constexpr std::string_view rsSavingAllPictures = "All pictures (%s)";
inline constexpr std::string_view rsSavingAllFiles = "All files (%s)";
/// A kind that cannot be written and the suggested one.
inline constexpr std::string_view rsSavingNotWritten =
    "%s files cannot be written. %s is suggested: it keeps every pixel.";
inline constexpr std::string_view rsSavingNotWrittenDepth =
    "%s files cannot be written. %s is suggested: it keeps more than 8 bits per color.";
inline constexpr std::string_view rsSavingNotWrittenPlace =
    "%s files cannot be written. %s is suggested: it keeps the position on the map.";
inline constexpr std::string_view rsSavingNameEndsWithSpace = "The name ends with a space.";

/// Facts and settings.
inline constexpr std::string_view rsSavingFacts = "%s × %s pixels, %s bits per pixel, %s in memory";
inline constexpr std::string_view rsSavingDpi = "%s dpi";
inline constexpr std::string_view rsSavingDpiXY = "%s × %s dpi";
inline constexpr std::string_view rsSavingNoDpi = "no resolution stated";
inline constexpr std::string_view rsSavingBytes = "%s bytes";
inline constexpr std::string_view rsSavingKib = "%s KiB";
inline constexpr std::string_view rsSavingMib = "%s MiB";
inline constexpr std::string_view rsSavingGib = "%s GiB";
inline constexpr std::string_view rsSavingDepth = "&Depth:";
inline constexpr std::string_view rsSavingDepthHint = "Bits per pixel of the file";
inline constexpr std::string_view rsSavingDepthAsIs = "As it is (%s bits)";
inline constexpr std::string_view rsSavingDepthOther = "%s bits";
inline constexpr std::string_view rsSavingDepth32 = "32 bits: color and opacity";
inline constexpr std::string_view rsSavingDepth24 = "24 bits: color";
inline constexpr std::string_view rsSavingDepth8 = "8 bits: 256 colors";
inline constexpr std::string_view rsSavingDepth4 = "4 bits: 16 colors";
inline constexpr std::string_view rsSavingDepth1 = "1 bit: black and white";
inline constexpr std::string_view rsSavingAsQuality = "Q&uality as in the source";
inline constexpr std::string_view rsSavingAsQualityHint =
    "Uses the same tables as the source, so that the quality does not change";
inline constexpr std::string_view rsSavingUsualQuality = "Us&ual quality (90)";
inline constexpr std::string_view rsSavingUsualQualityHint =
    "The quality for pictures that were no JPEG file";
inline constexpr std::string_view rsSavingQuality = "&Quality:";
inline constexpr std::string_view rsSavingQualityHint =
    "1 (small file) to 100 (best); 90 shows hardly any difference";
inline constexpr std::string_view rsSavingQualityName = "Quality";
inline constexpr std::string_view rsSavingQualityNumber = "Quality as a number";
inline constexpr std::string_view rsSavingSampling = "Color d&etail:";
inline constexpr std::string_view rsSavingSamplingHint =
    "How finely a JPEG file stores color; brightness is always stored in full";
inline constexpr std::string_view rsSavingSamplingSource = "As in the source (%s)";
inline constexpr std::string_view rsSavingSamplingUsual = "Usual for the quality";
inline constexpr std::string_view rsSaving444 = "Full color (4:4:4)";
inline constexpr std::string_view rsSaving422 = "Half color (4:2:2)";
inline constexpr std::string_view rsSaving420 = "Quarter color (4:2:0)";
inline constexpr std::string_view rsSavingMove = "&Blocks:";
inline constexpr std::string_view rsSavingMoveHint =
    "Whether compressed pixels that only move are kept as they are";
inline constexpr std::string_view rsSavingMoveExact = "Kept where nothing is cut off";
inline constexpr std::string_view rsSavingMoveTrim = "Kept; edges are cut to whole blocks";
inline constexpr std::string_view rsSavingMoveOff = "Compressed again";
inline constexpr std::string_view rsSavingCompression = "Co&mpression:";
inline constexpr std::string_view rsSavingCompressionHint =
    "How a TIFF file is packed; every choice keeps every pixel";
inline constexpr std::string_view rsSavingCompressionSource = "As in the source";
inline constexpr std::string_view rsSavingCompressionStandard =
    "Usual (LZW, or G4 for black and white)";
inline constexpr std::string_view rsSavingCompressionNone = "None";
inline constexpr std::string_view rsSavingCompressionLzw = "LZW";
inline constexpr std::string_view rsSavingCompressionDeflate = "Deflate";
inline constexpr std::string_view rsSavingCompressionPackBits = "PackBits";
inline constexpr std::string_view rsSavingCompressionGroup4 = "G4 (black and white only)";
inline constexpr std::string_view rsSavingLevel = "&Packing:";
inline constexpr std::string_view rsSavingLevelHint =
    "How hard a PNG file is packed; every choice keeps every pixel";
inline constexpr std::string_view rsSavingLevelAuto = "Chosen by the picture";
inline constexpr std::string_view rsSavingLevelNone = "0: not packed";
inline constexpr std::string_view rsSavingLevelQuick = "1: quick";
inline constexpr std::string_view rsSavingLevelSmallest = "12: smallest, slow";
inline constexpr std::string_view rsSavingKeep = "&Information:";
inline constexpr std::string_view rsSavingKeepHint =
    "What the file states about the picture: camera, date, place, comments";
inline constexpr std::string_view rsSavingKeepAll = "Keep all";
inline constexpr std::string_view rsSavingKeepWithoutGps = "Without the place of the photograph";
inline constexpr std::string_view rsSavingKeepNothing = "Keep nothing";

/// What saving does, above the button.
inline constexpr std::string_view rsSavingCopied = "Lossless: the compressed pixels are copied";
inline constexpr std::string_view rsSavingMoved = "Lossless: the compressed pixels are moved";
inline constexpr std::string_view rsSavingMovedTrimmed =
    "Lossless: the compressed pixels are moved, edges are cut to whole blocks";
inline constexpr std::string_view rsSavingKeepsPixels = "Lossless: every pixel is kept";
inline constexpr std::string_view rsSavingChangesPixels = "Not lossless: %s";
inline constexpr std::string_view rsSavingAgain = "Compressed again: %s";
inline constexpr std::string_view rsSavingWhyEdges =
    "the new edges are not on the borders of its blocks";
inline constexpr std::string_view rsSavingWhyBlocks = "the blocks of this file cannot be moved";
inline constexpr std::string_view rsSavingWhyKind = "a JPEG file does not keep every pixel";
inline constexpr std::string_view rsSavingWhySettings = "the settings differ from the source";
inline constexpr std::string_view rsSavingWhySteps = "the pixels were changed";
inline constexpr std::string_view rsSavingWhyWished = "it was chosen so";
inline constexpr std::string_view rsSavingWhyDepth = "the file has another depth";
inline constexpr std::string_view rsSavingWhyPixels = "see what is lost";
inline constexpr std::string_view rsSavingNoLoss = "Nothing is lost";
inline constexpr std::string_view rsSavingLost = "Lost: %s";
inline constexpr std::string_view rsSavingLossDetails = "&What is lost";
inline constexpr std::string_view rsSavingLossDetailsHint =
    "Lists what the file will lack, and why";
inline constexpr std::string_view rsSavingLossList = "What the file will lack, and why";
inline constexpr std::string_view rsSavingSizeAtMost = "Size of the file: at most %s";
inline constexpr std::string_view rsSavingSizeWorking =
    "Size of the file: at most %s (being computed, %s percent)";
inline constexpr std::string_view rsSavingSizeTrue = "Size of the file: %s";
inline constexpr std::string_view rsSavingSizeWas = "Size of the file: %s (was %s)";
inline constexpr std::string_view rsSavingSizeUnknown = "Size of the file: unknown";

/// The 1:1 view.
inline constexpr std::string_view rsSavingViewBefore = "Befo&re";
inline constexpr std::string_view rsSavingViewAfter = "As sa&ved";
inline constexpr std::string_view rsSavingViewBeforeHint =
    "The picture before saving, 1:1. Drag it or use the arrow keys to see another part";
inline constexpr std::string_view rsSavingViewAfterHint =
    "The picture as it will be saved, 1:1. Drag it or use the arrow keys to see another part";
inline constexpr std::string_view rsSavingViewPart = "Part from %s, %s: %s × %s pixels";
inline constexpr std::string_view rsSavingViewSame = "As sa&ved: the same pixels";
inline constexpr std::string_view rsSavingViewWorking = "As sa&ved: being computed ...";
inline constexpr std::string_view rsSavingViewFailed = "As sa&ved: cannot be shown";

/// Why a name cannot be written. "%s" is a name or a folder.
inline constexpr std::string_view rsSavingFaultNoName = "Type a name for the file.";
inline constexpr std::string_view rsSavingFaultNoFreeName =
    "There is no free name beside %s. Type a name for the file.";
inline constexpr std::string_view rsSavingFaultReadOnly =
    "Files cannot be written into the folder %s.";
inline constexpr std::string_view rsSavingFaultKind =
    "%s files cannot be written. Choose another kind.";
inline constexpr std::string_view rsSavingFaultTarget = "The file %s cannot be written.";
inline constexpr std::string_view rsSavingFaultPlan = "It cannot be saved so: %s";

/// Kinds of losses, in a list of words.
inline constexpr std::string_view rsLossBits = "depth";
inline constexpr std::string_view rsLossColors = "colors";
inline constexpr std::string_view rsLossChroma = "color detail";
inline constexpr std::string_view rsLossAlpha = "opacity";
inline constexpr std::string_view rsLossTransparentColor = "transparent color";
inline constexpr std::string_view rsLossNoData = "mark of empty pixels";
inline constexpr std::string_view rsLossDamage = "damaged pixels";
inline constexpr std::string_view rsLossPages = "other pages";
inline constexpr std::string_view rsLossFrames = "other frames";
inline constexpr std::string_view rsLossHiddenPictures = "hidden pictures";
inline constexpr std::string_view rsLossPosition = "position on the map";
inline constexpr std::string_view rsLossControlPoints = "control points";
inline constexpr std::string_view rsLossCoordinateSystem = "coordinate system";
inline constexpr std::string_view rsLossSideFile = "file beside it";
inline constexpr std::string_view rsLossExif = "photograph's data";
inline constexpr std::string_view rsLossGps = "place of the photograph";
inline constexpr std::string_view rsLossXmp = "XMP description";
inline constexpr std::string_view rsLossIptc = "IPTC description";
inline constexpr std::string_view rsLossComment = "comment";
inline constexpr std::string_view rsLossText = "texts";
inline constexpr std::string_view rsLossProfile = "color profile";
inline constexpr std::string_view rsLossResolution = "resolution";
inline constexpr std::string_view rsLossThumbnail = "thumbnail";
inline constexpr std::string_view rsLossMakerNote = "notes of the camera's maker";
inline constexpr std::string_view rsLossOtherBlock = "data of other programs";
inline constexpr std::string_view rsLossTiling = "tiles";
inline constexpr std::string_view rsLossRecords = "drawing records";

}  // namespace rasterkit
