#include <array>
#include <memory>
#include <mutex>
#include <utility>

#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

constexpr std::array kKeys = {
    rsAllSupportedFiles, rsBitmapToLargeToRotate, rsPaletteExceeded,
    // Buttons
    rsCancel, rsCancelHint, rsHelp, rsHelpHint, rsOk, rsOkHint, rsRefresh, rsRefreshHint,
    // File dialogs
    rsFileIsFolder, rsFileNameTooLong, rsNoSuchFolder, rsOpenPicture, rsPreview, rsPreviewBroken,
    rsPreviewLoading, rsPreviewNone, rsPreviewTooLarge, rsReplaceFile, rsSavePicture,
    // Questions
    rsNo, rsYes,
    // Save window
    rsFileListDate, rsFileListEmpty, rsFileListGone, rsFileListName, rsFileListReading,
    rsFileListSize, rsFileListUnreadable, rsSaveAllFiles, rsSaveButton, rsSaveButtonHint,
    rsSaveChooseFolder, rsSaveChooseFolderHint, rsSaveDetail, rsSaveFileExists,
    rsSaveFileExistsPrompt, rsSaveFiles, rsSaveFilesHint, rsSaveFilter, rsSaveFilterHint,
    rsSaveFolderUp, rsSaveGraphics, rsSaveList, rsSaveName, rsSaveNameHint, rsSaveNameIsExtension,
    rsSaveNameReserved, rsSaveNameUnfit, rsSaveOptionsHint, rsSavePath, rsSavePathHint,
    // Crop tool
    rsSizeOfPicture, rsInfoWidth, rsInfoHeight, rsInfoBitDepth, rsInfoCutWidth, rsInfoCutHeight,
    rsInfoCutMemsize, rsCutForReaders, rsNoCutForReaders, rsCropActualSize, rsCropActualSizeHint,
    rsCropDimensionsCaption, rsCropFit, rsCropFitHint, rsCropFitName, rsCropHeight,
    rsCropHeightHint, rsCropLeft, rsCropLeftHint, rsCropPicture, rsCropRectangle,
    rsCropRectangleHelp, rsCropRectangleHint, rsCropTop, rsCropTopHint, rsCropUndo, rsCropUndoHint,
    rsCropWhole, rsCropWholeHint, rsCropWidth, rsCropWidthHint,
    // Values
    rsBlue, rsBlueHint, rsBrightness, rsBrightnessHint, rsChangeBitmapValues, rsChanged,
    rsChangedHint, rsChangedPicture, rsColor, rsColorHint, rsContrast, rsContrastHint, rsGrayValue,
    rsGrayValueHint, rsGreen, rsGreenHint, rsOptions, rsOriginal, rsOriginalHint, rsOriginalPicture,
    rsRed, rsRedHint, rsRefreshValuesHint, rsSelectGrayValue, rsSharpen, rsSharpenHint,
    // Size
    rsChangeSize, rsHeightHint, rsProportional, rsProportionalHint, rsWidthAndHeight, rsWidthHint,
    // Editor
    rsEditBitmap, rsEditConvertPdf, rsEditNoMemory, rsEditPageSize, rsEditPages, rsEditPdfFailed,
    rsEditUnreadable, rsEdit256Colors, rsEditBlackWhite, rsEditCut, rsEditDimensions, rsEditFit,
    rsEditGray, rsEditImage, rsEditMirror, rsEditOpen, rsEditOpenName, rsEditOriginalSize,
    rsEditPage, rsEditPageHint, rsEditPageSizeCaption, rsEditPictureHelp, rsEditRendering,
    rsEditRenderingName, rsEditResolution, rsEditResolutionHint, rsEditResolutionName,
    rsEditRotation, rsEditRotationHint, rsEditRotationName, rsEditSave, rsEditSaveName, rsEditSize,
    rsEditWhole,
    // Graphics settings
    rsParas16Colors, rsParas256Colors, rsParasBlackWhite, rsParasBmpSize, rsParasCaption,
    rsParasColors, rsParasColorsHint, rsParasJpeg, rsParasMaxCompression, rsParasMaxQuality,
    rsParasMinQuality, rsParasMm, rsParasNoCompression, rsParasPixels, rsParasPng, rsParasQuality,
    rsParasQualityHint, rsParasResolution, rsParasResolutionHint, rsParasSettings, rsParasTiff,
    rsParasTrueColor, rsParasType, rsParasTypeHint, rsParasWidthHeight, rsParasWindowsBitmap,
    rsUnitByte, rsUnitKilobyte, rsUnitMegabyte,
    // File types
    rsEnhancedMetafile, rsWindowsMetafile};

/// Shared, so that a text can be asked for while a translator is replaced.
using Shared = std::shared_ptr<const TTranslator>;

struct Installed {
  std::mutex mutex;
  Shared translator, catalogue;
};

Installed& TheInstalled() {
  static Installed installed;
  return installed;
}

Shared CurrentTranslator() {
  const std::lock_guard lock(TheInstalled().mutex);
  return TheInstalled().translator ? TheInstalled().translator : TheInstalled().catalogue;
}

/// The one that was there ends after the lock: it may ask for texts itself.
void Install(Shared Installed::*place, TTranslator translator) {
  Shared installed;
  if (translator) installed = std::make_shared<const TTranslator>(std::move(translator));
  const std::lock_guard lock(TheInstalled().mutex);
  (TheInstalled().*place).swap(installed);
}

}  // namespace

std::span<const std::string_view> ResourceStringKeys() {
  return kKeys;
}

std::string ResourceString(std::string_view key) {
  const auto translator = CurrentTranslator();
  std::string text = translator ? (*translator)(key) : std::string();
  return text.empty() ? std::string(key) : text;
}

void SetTranslator(TTranslator translator) {
  Install(&Installed::translator, std::move(translator));
}

void SetCatalogue(TTranslator catalogue) {
  Install(&Installed::catalogue, std::move(catalogue));
}

}  // namespace rasterkit
