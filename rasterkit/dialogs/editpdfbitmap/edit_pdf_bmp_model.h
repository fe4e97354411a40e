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

/// What a key typed into a combo box means. Keys that only move the caret or the focus are none of
/// these and stay with the box; Delete counts as backspace.
enum class ComboKey { backspace, digit, minus, enter, other };

/// Keys of the window.
enum class EditKey { enter, escape, del, h, z, other };

inline constexpr int kHelpOfPdf = 570001, kHelpOfGraphic = 570002;

/// All that the editor of graphics and PDF pages knows and does, without a window.
///
/// There are two ways to work on a graphic. Where its target file did not exist, everything is done
/// to the work bitmap at once, and turns add up. Where it did, as for a page of a PDF, the picture
/// is made anew from its source each time, and the settings are applied to it in their order.
///
/// Events are named after their controls. None of them throws: what goes wrong is told in a message
/// (the port `messageBox`), and the picture is as it was before, as far as that could be kept. An
/// event that arrives while another one is at work, be it that the window's loop is turned, that
/// a dialog is open or that the model sets a control, is ignored; while a page is being rendered
/// only cancelling is heard. One thread.
class EditPdfBmpModel {
 public:
  /// The view, and the crop tool that shows the picture, must outlive the model. It takes the
  /// tool's `OnStateChanged`.
  EditPdfBmpModel(EditPdfBmpView& view, BmpCutModel& cutRect);
  ~EditPdfBmpModel();
  EditPdfBmpModel(const EditPdfBmpModel&) = delete;
  EditPdfBmpModel& operator=(const EditPdfBmpModel&) = delete;

  // How it starts.

  /// The window's own caption, which the title ends with.
  void SetOrgCaption(const std::string& caption);
  const std::string& OrgCaption() const { return fOrgCaption; }
  /// Opens a source file: the PDF's first page is rendered, a graphic is shown as it is. A file
  /// that cannot be opened is told in a message; then all stays as it was, and it is false. (A
  /// graphic that cannot be read is shown as a blank picture when there is none before it.)
  bool SetOrgFilename(const std::string& name);
  /// Names the target (see EditFileNames), and with it the source when none is known.
  void SetBmpFilename(const std::string& name);
  std::string GetBmpFilename() const { return names_.GetBmpFilename(); }
  /// Folder of a target that has no name yet, with its separator.
  void SetBmpDir(const std::string& dir) { names_.fBmpDir = dir; }
  /// Edits a graphic, which may be null: a blank picture.
  void SetOrgGraphic(std::unique_ptr<TGraphic> graphic);

  // How it ends.

  /// The graphic to hand out, of the class of that which came in: the very one when nothing was
  /// changed, else a new one of the work bitmap, cut. Call it once, after the window was closed
  /// with `mrOk`. Throws LimitError without memory; the graphic then is still here.
  std::unique_ptr<TGraphic> GetOrgGraphic();
  /// What the window was closed with.
  std::optional<int> ModalResult() const { return modalResult_; }

  // Events of the controls.

  /// The text is that of the edit line, typed or chosen from the list.
  void CoBoResolutionChange(const std::string& text);
  void CoBoRotationChange(const std::string& text);
  /// Before the box sees the key; true when it may have it.
  bool CoBoResolutionKeyPress(ComboKey key);
  bool CoBoRotationKeyPress(ComboKey key);
  /// The focus has left a combo box: nobody types there any more. Nothing is applied.
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
  /// While a page is being rendered, ends that and no more.
  void NaviResultCancelClick();
  void NaviResultHelpClick();

  /// Keys that no combo box has used; true when the window has used it.
  bool FormKeyDown(EditKey key, bool ctrl);
  void FormKeyUp() { fCtrlPressed = false; }
  /// `mousePos` in paint-box pixels; always true, for it counts as handled.
  bool FormMouseWheel(int wheelDelta, const TPoint& mousePos);
  void FormActivate();
  void FormResize();
  /// The user closes the window by its frame; a page that is being rendered is given up first.
  void FormClose();
  /// A file was dropped onto the window: as if it had been chosen with the open button.
  void FormDropFile(const std::string& fileName);

  /// Takes back the last change of the crop rectangle, or else of the picture (one step, as far as
  /// memory allows).
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
  /// A page is being rendered.
  bool IsRendering() const { return isRendering_; }
  const EditControls& Controls() const { return controls_; }

 private:
  class RenderingTime;
  enum class Rendered { done, cancelled, shortage, failed };

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
  bool isCancelled_ = false;
  bool closesAfterwards_ = false;
};

}  // namespace rasterkit
