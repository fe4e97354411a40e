#include <exception>
#include <memory>

#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/dialogs/bitmapframe/crop_bitmap.h>
#include <rasterkit/dialogs/desktop/desktop_dialogs.h>
#include <rasterkit/dialogs/editchangesize/edit_size.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_graphic.h>
#include <rasterkit/dialogs/editpdfbitmap/editor_isolation.h>
#include <rasterkit/dialogs/execbitmap/adjust_bitmap.h>
#include <rasterkit/dialogs/savedlgbitmap/save_bitmap_dlg_ext.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/qt/preview/preview_decoder.h>

namespace rasterkit {
namespace {

void Say(std::string& error, const char* text) noexcept try {
  error = text;
} catch (const std::exception&) {
  error.clear();
}

/// Converts the answer and the exceptions of `dialog`.
template <typename Dialog>
DesktopAnswer AnswerOf(Dialog dialog, std::string& error) noexcept try {
  return dialog() ? DesktopAnswer::confirmed : DesktopAnswer::canceled;
} catch (const std::exception& exception) {
  Say(error, exception.what());
  return DesktopAnswer::failed;
} catch (...) {
  Say(error, "the dialog failed");
  return DesktopAnswer::failed;
}

/// Holds the application between `start` and `end`.
std::unique_ptr<TModalCall>& Session() {
  static std::unique_ptr<TModalCall> session;
  return session;
}

DesktopAnswer Start(Isolation reading, std::string& error) noexcept {
  const auto start = [reading] {
    Session() = std::make_unique<TModalCall>();
    detail::SetPreviewIsolation(reading);
    detail::SetEditorIsolation(reading);
    return true;
  };
  return AnswerOf(start, error);
}

void End() noexcept {
  Session().reset();
}

DesktopAnswer Adjust(TBitmap& bitmap, TChgBmpValuesRec& values, std::string& error) noexcept {
  return AnswerOf([&] { return AdjustBitmap(bitmap, values); }, error);
}

DesktopAnswer Resize(int32_t& width, int32_t& height, std::string& error) noexcept {
  bool isProportional = false;
  return AnswerOf([&] { return EditSize(width, height, isProportional); }, error);
}

DesktopAnswer Crop(TBitmap& bitmap, TRect& rect,
                   const std::function<bool(const TRect& part)>& isLossless,
                   std::string& error) noexcept {
  return AnswerOf([&] { return ChooseCropRect(bitmap, rect, isLossless); }, error);
}

DesktopAnswer OpenFile(std::string& fileName, std::string& error) noexcept {
  return AnswerOf([&] { return BitmapOpenDialog("", "", bfLoadBmp, fileName, true); }, error);
}

DesktopAnswer Edit(const std::string& dir, std::string& fileName,
                   std::unique_ptr<TGraphic>& graphic, std::string& error) noexcept {
  int32_t unused[4] = {};
  const auto edit = [&] {
    return EditGraphic(dir, fileName, graphic, unused[0], unused[1], unused[2], unused[3]);
  };
  return AnswerOf(edit, error);
}

DesktopAnswer ConvertPage(const std::string& pdfFile, std::string& pictureFile,
                          std::string& error) noexcept {
  return AnswerOf([&] { return ConvertPdfPageToBmpDialog(pdfFile, pictureFile) > 0; }, error);
}

DesktopAnswer SaveBitmap(const std::string& dir, TrecSaveBitmap& rec, std::string& fileName,
                         std::string& error) noexcept {
  const auto ask = [&] {
    return SaveBitmapDlgExt(dir, rec, false, true, false, true, 0, 0, fileName);
  };
  return AnswerOf(ask, error);
}

DesktopAnswer SaveBitmapPixels(const std::string& dir, TrecSaveBitmap& rec, int32_t& width,
                               int32_t& height, std::string& fileName,
                               std::string& error) noexcept {
  return AnswerOf([&] { return SaveBitmapDlgExt(dir, rec, width, height, fileName); }, error);
}

constexpr DesktopDialogs kDialogs = {Start,    End,  Adjust,      Resize,     Crop,
                                     OpenFile, Edit, ConvertPage, SaveBitmap, SaveBitmapPixels};

}  // namespace

extern "C" const DesktopDialogs* rasterkit_desktop_dialogs(int32_t version) {
  return version == kDesktopVersion ? &kDialogs : nullptr;
}

}  // namespace rasterkit
