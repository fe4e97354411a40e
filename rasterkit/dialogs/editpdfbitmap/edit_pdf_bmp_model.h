#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>
#include <rasterkit/dialogs/editpdfbitmap/bitmap_settings.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_controls.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_file_names.h>
#include <rasterkit/dialogs/editpdfbitmap/picture_undo.h>
#include <rasterkit/graphics/pdf_document.h>

namespace rasterkit {

/// The meaning of a key typed into a combo box. Keys that only move the caret or the focus are
/// handled by the box; Delete counts as backspace.
enum class ComboKey { backspace, digit, minus, enter, other };

/// Keys of the window.
enum class EditKey { enter, escape, del, h, z, other };

inline constexpr int kHelpOfPdf = 570001, kHelpOfGraphic = 570002;

/// The state and the rules of the editor of graphics and PDF pages, without a window.
///
/// There are two ways to edit a graphic. If its target file did not exist, every change is applied
/// to the work bitmap at once, and rotations add up. If it did, or for a page of a PDF, the picture
/// is made again from its source each time, and the settings are applied to it in their order.
///
/// Events are named after their controls. None of them throws: errors are shown in a message (the
/// port `messageBox`), and the previous picture is kept if possible. An event that arrives while
/// another one is handled (the window's loop runs, a dialog is open, or the model sets a control)
/// is ignored; while a page is rendered only canceling is accepted. Not thread-safe.
class EditPdfBmpModel {
 public:
  /// The view and the crop tool that shows the picture must outlive the model, which uses the
  /// tool's `OnStateChanged`.
  EditPdfBmpModel(EditPdfBmpView& view, BmpCutModel& cutRect);
  ~EditPdfBmpModel();
  EditPdfBmpModel(const EditPdfBmpModel&) = delete;
  EditPdfBmpModel& operator=(const EditPdfBmpModel&) = delete;

  // How it starts.

  /// Sets the window's own caption, with which the title ends.
  void SetOrgCaption(const std::string& caption);
  const std::string& OrgCaption() const { return fOrgCaption; }
  /// Opens a source file: the first page of a PDF is rendered, a graphic is shown as it is. If a
  /// file cannot be opened, it shows a message, changes nothing and returns false. (A graphic that
  /// cannot be read is shown as a blank picture if there was none before.)
  bool SetOrgFilename(const std::string& name);
  /// Sets the target (see EditFileNames), and also the source if there is none.
  void SetBmpFilename(const std::string& name);
  std::string GetBmpFilename() const { return names_.GetBmpFilename(); }
  /// Sets the folder of a target without a name, with its separator.
  void SetBmpDir(const std::string& dir) { names_.fBmpDir = dir; }
  /// Edits a graphic, which may be null: a blank picture.
  void SetOrgGraphic(std::unique_ptr<TGraphic> graphic);

  // How it ends.

  /// Returns the result in the class of the graphic that was set: the same object if nothing was
  /// changed, else a new one with the cut work bitmap. Call it once, after the window was closed
  /// with `mrOk`. Throws LimitError if out of memory; the graphic is kept then.
  std::unique_ptr<TGraphic> GetOrgGraphic();
  /// Returns the modal result with which the window was closed.
  std::optional<int> ModalResult() const { return modalResult_; }

  // Events of the controls.

  /// The text of the edit line, typed or chosen from the list.
  void CoBoResolutionChange(const std::string& text);
  void CoBoRotationChange(const std::string& text);
  /// Called before the box handles the key; true if the box may handle it.
  bool CoBoResolutionKeyPress(ComboKey key);
  bool CoBoRotationKeyPress(ComboKey key);
  /// A combo box lost the focus; its text is not applied.
  void CoBoExit();
  void SpinEditPageChange(int page);

  void SpeedButtonOpenClick();
  void SpeedButtonViewZoomClick();
  void SpeedButtonViewOrigClick();
  void SpeedButtonMirrorClick();
  void SpeedButtonGrayScaleClick();
  void SpeedButtonBlackWhiteClick();
  void SpeedButton256ColorsClick();
  void SpeedButtonCutClick();
  void SpeedButtonEditClick();
  void SpeedButtonSaveClick();

  void NaviResultPostClick();
  /// While a page is rendered, cancels only the rendering.
  void NaviResultCancelClick();
  void NaviResultHelpClick();

  /// Handles keys that no combo box has used; true if the window used the key.
  bool FormKeyDown(EditKey key, bool ctrl);
  void FormKeyUp() { fCtrlPressed = false; }
  /// `mousePos` in paint-box pixels; returns true: the wheel is always handled.
  bool FormMouseWheel(int wheelDelta, const TPoint& mousePos);
  void FormActivate();
  void FormResize();
  /// The user closes the window by its frame; a page that is being rendered is canceled first.
  void FormClose();
  /// A file was dropped onto the window: the same as choosing it with the open button.
  void FormDropFile(const std::string& fileName);

  /// Undoes the last change of the crop rectangle, or else of the picture (one step, if memory
  /// allows).
  void Undo();
  bool CanUndo() const;

  // What is.

  bool IsPDF() const { return names_.fIsPDF; }
  bool BmpFileExisted() const { return names_.fBmpFileExisted; }
  const EditFileNames& FileNames() const { return names_; }
  const TBitmap* WorkBitmap() const { return fWorkBitmap.get(); }
  const TGraphic* OrgGraphic() const { return fOrgGraphic.get(); }
  bool BmpChanged() const { return fBmpChanged; }
  bool InEditCoBo() const { return fInEditCoBo; }
  bool CtrlPressed() const { return fCtrlPressed; }
  int Rotation() const { return fRotation; }
  int Resolution() const { return fResolution; }
  int PageNumber() const { return fPageNumber; }
  int HelpContext() const { return helpContext_; }
  /// Whether a page is being rendered.
  bool IsRendering() const { return isRendering_; }
  const EditControls& Controls() const { return controls_; }

 private:
  class RenderingTime;
  enum class Rendered { done, canceled, shortage, failed };

  // Sources: edit_pdf_bmp_model.cpp
  bool OpenSource(const std::string& name);
  bool OpenPdf(const std::string& name);
  bool OpenGraphic(const std::string& name);
  void TakeGraphic(std::unique_ptr<TGraphic> graphic);
  void ShowFileName();
  void SetIsPDF(bool isPdf);
  void ShowPageControls();
  void ShowEditButton(bool shown);
  void ChangeOrgGraphic();

  // The picture made anew: edit_pdf_bmp_rendering.cpp
  void GenerateBitmaps(bool deleteCut);
  bool MakeFromSource();
  void ReleaseWorkBitmap(uint64_t bytesToCome);
  int ResolutionInBox() const;
  bool RenderPdfToBmp();
  Rendered TryRender(int resolution);
  bool RenderAgain(int resolution);
  bool RenderPage(int resolution);
  std::unique_ptr<TBitmap> RealRenderPDF(int page, int resolution, PdfRotation rotation);
  bool TakeCancellation();
  void ShowNothing();
  uint64_t BytesOfPage(int resolution) const;
  std::string SizeOfPage() const;
  void ShowPageSize();
  void ExecBmpSettings();
  void BmpRotate();
  void CheckBmpAction();

  // Changes of the picture: edit_pdf_bmp_changes.cpp
  bool AppliesAtOnce() const;
  bool ChangeInPlace(const std::function<bool()>& change);
  void ShowChanged();
  void ClickSetting(EditControl button, const std::function<bool(TBitmap&)>& change);
  void ClickBlackWhite();
  void Mirror();
  void ApplyResolution(bool isEntered);
  void ApplyRotation();
  void ChangePage(int page);
  void ResetForPage();
  void ReplaceWorkBitmap(std::unique_ptr<TBitmap> bitmap);
  void TakeCutBitmap();
  void Cut();
  void EditValues();
  void EditSize();

  // Taking back: edit_pdf_bmp_undo.cpp
  EditState CurrentState() const;
  void BeginChange() { undo_.Begin(CurrentState()); }
  void TakeState(const EditState& state);
  void TakeStepBack();

  // Events: edit_pdf_bmp_events.cpp
  void Handle(const std::function<void()>& action);
  void PutRight();
  void ShowAvailability();
  void CutRectChanged();
  void ShowAt(bool fit);
  void OpenOther(const std::string& name);
  bool RunSaveDialog();
  static bool MayOverwrite(const std::string& fileName);
  void SaveBitmap();
  void OKclicked();
  void Close(int modalResult);
  void Escape();
  void DelCutRect();

  EditPdfBmpView& view_;
  BmpCutModel& fBmpCutRect;
  EditControls controls_;
  EditFileNames names_;
  std::string fOrgCaption;
  std::unique_ptr<TBitmap> fWorkBitmap;
  std::unique_ptr<TGraphic> fOrgGraphic;
  std::unique_ptr<PdfDocument> fPdfFile;
  bool fBmpChanged = false;
  bool fCtrlPressed = false;
  bool fInEditCoBo = false;
  int fRotation = 0;
  int fResolution = 150;
  int fPageNumber = -1;

  PictureUndo undo_;
  int helpContext_ = kHelpOfGraphic;
  std::optional<int> modalResult_;
  bool isHandling_ = false;
  bool isRendering_ = false;
  bool isCanceled_ = false;
  bool closesAfterwards_ = false;
};

}  // namespace rasterkit
