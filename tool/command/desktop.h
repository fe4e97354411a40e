#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <rasterkit/dialogs/desktop/desktop_dialogs.h>

namespace rasterkit::tool {

/// The windows of the verbs with --dialog. Their library is loaded only when needed: the tool
/// itself requires no display and no toolkit. One at a time, on the main thread.
///
/// Each function shows one window and returns after the user confirmed it. It throws
/// Failure(exitAnswerIsNo) if the user canceled, and Failure(exitOutputNotWritten) if the window
/// failed. An interruption ends the process while a window is open.
class Desktop {
 public:
  /// The windows read files in worker processes, unless --no-isolate says otherwise.
  /// Throws Failure(exitOutputNotWritten) if the dialogs are not installed or no window can be
  /// opened.
  Desktop();
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  /// See AdjustBitmap, EditSize and ChooseCropRect of the library. `input` is the name of the
  /// picture, for messages.
  void Adjust(TBitmap& bitmap, TChgBmpValuesRec& values, const std::string& input) const;
  void EditSize(int32_t& width, int32_t& height, const std::string& input) const;
  void ChooseCropRect(TBitmap& bitmap, TRect& rect,
                      const std::function<bool(const TRect& part)>& isLossless,
                      const std::string& input) const;

  /// Lets the user choose a picture or PDF file. See BitmapOpenDialog.
  void OpenFile(std::string& fileName) const;
  /// See EditGraphic and ConvertPdfPageToBmpDialog.
  void EditGraphic(const std::string& dir, std::string& fileName,
                   std::unique_ptr<TGraphic>& graphic) const;
  void ConvertPdfPage(const std::string& pdfFile, std::string& pictureFile) const;

  /// Lets the user choose name, type and options for saving a picture. See SaveBitmapDlgExt.
  void SaveBitmap(const std::string& dir, TrecSaveBitmap& rec, std::string& fileName) const;
  void SaveBitmapPixels(const std::string& dir, TrecSaveBitmap& rec, int32_t& width,
                        int32_t& height, std::string& fileName) const;

  /// Shows a message until the user closes it.
  void Tell(const std::string& text) const;

 private:
  const DesktopDialogs& dialogs_;
};

}  // namespace rasterkit::tool
