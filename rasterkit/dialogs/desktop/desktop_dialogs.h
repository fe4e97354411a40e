#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/savedlgbitmap/save_options.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// How a dialog ended.
enum class DesktopAnswer : int32_t { confirmed, cancelled, failed };

/// The dialogs for a program that has no Qt: it opens librasterkit-dialogs when one is wanted
/// (DynamicLibrary), asks its one C entry for this table, and calls `start` before and `end` after
/// its dialogs, all on one thread. None of the functions throws; one that failed says why in
/// `error` and has changed nothing else.
struct DesktopDialogs {
  /// Makes the application for all dialogs to come. Fails where no window can be opened; `end` is
  /// then not called.
  DesktopAnswer (*start)(std::string& error) noexcept;
  void (*end)() noexcept;

  /// AdjustBitmap.
  DesktopAnswer (*adjustBitmap)(TBitmap& bitmap, TChgBmpValuesRec& values,
                                std::string& error) noexcept;
  /// EditSize.
  DesktopAnswer (*editSize)(int32_t& width, int32_t& height, std::string& error) noexcept;
  /// ChooseCropRect.
  DesktopAnswer (*chooseCropRect)(TBitmap& bitmap, TRect& rect, std::string& error) noexcept;

  /// BitmapOpenDialog for pictures and PDF files.
  DesktopAnswer (*openFile)(std::string& fileName, std::string& error) noexcept;
  /// EditGraphic.
  DesktopAnswer (*editGraphic)(const std::string& dir, std::string& fileName,
                               std::unique_ptr<TGraphic>& graphic, std::string& error) noexcept;
  /// ConvertPdfPageToBmpDialog; a file that is not there counts as cancelled.
  DesktopAnswer (*convertPdfPage)(const std::string& pdfFile, std::string& pictureFile,
                                  std::string& error) noexcept;

  /// SaveBitmapDlgExt with the resolution among its options, and with the size in pixels; without
  /// metafiles, and asking before an existing file is taken.
  DesktopAnswer (*saveBitmap)(const std::string& dir, TrecSaveBitmap& rec, std::string& fileName,
                              std::string& error) noexcept;
  DesktopAnswer (*saveBitmapPixels)(const std::string& dir, TrecSaveBitmap& rec, int32_t& width,
                                    int32_t& height, std::string& fileName,
                                    std::string& error) noexcept;
};

/// Goes up with every change of the table, or of a type that its functions take.
inline constexpr int32_t kDesktopVersion = 3;

inline constexpr const char* kDesktopEntry = "rasterkit_desktop_dialogs";

/// The table of version `version`; null when this library has another. It lives as long as the
/// process.
using DesktopEntry = const DesktopDialogs*(int32_t version);
extern "C" RASTERKIT_EXPORT DesktopEntry rasterkit_desktop_dialogs;

}  // namespace rasterkit
