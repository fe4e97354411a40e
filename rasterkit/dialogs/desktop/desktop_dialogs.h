#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/savedlgbitmap/save_options.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/isolation.h>

namespace rasterkit {

/// How a dialog ended.
enum class DesktopAnswer : int32_t { confirmed, canceled, failed };

/// The dialogs for a program without Qt. The program opens librasterkit-dialogs when it needs one
/// (DynamicLibrary), gets this table from its one C entry, and calls `start` before and `end` after
/// its dialogs, all on one thread. No function throws; one that fails sets `error` and changes
/// nothing else.
struct DesktopDialogs {
  /// Creates the application object for all following dialogs. Fails if no window can be opened; do
  /// not call `end` then. `reading`: where previews and the files that the user opens in the editor
  /// are read; PDF files are always read in a worker process.
  DesktopAnswer (*start)(Isolation reading, std::string& error) noexcept;
  void (*end)() noexcept;

  /// AdjustBitmap.
  DesktopAnswer (*adjustBitmap)(TBitmap& bitmap, TChgBmpValuesRec& values,
                                std::string& error) noexcept;
  /// EditSize.
  DesktopAnswer (*editSize)(int32_t& width, int32_t& height, std::string& error) noexcept;
  /// ChooseCropRect. `isLossless` may be empty.
  DesktopAnswer (*chooseCropRect)(TBitmap& bitmap, TRect& rect,
                                  const std::function<bool(const TRect& part)>& isLossless,
                                  std::string& error) noexcept;

  /// BitmapOpenDialog for pictures and PDF files.
  DesktopAnswer (*openFile)(std::string& fileName, std::string& error) noexcept;
  /// EditGraphic.
  DesktopAnswer (*editGraphic)(const std::string& dir, std::string& fileName,
                               std::unique_ptr<TGraphic>& graphic, std::string& error) noexcept;
  /// ConvertPdfPageToBmpDialog; a missing file counts as canceled.
  DesktopAnswer (*convertPdfPage)(const std::string& pdfFile, std::string& pictureFile,
                                  std::string& error) noexcept;

  /// SaveBitmapDlgExt with the resolution among its options and with the size in pixels, without
  /// metafiles; asks before overwriting a file.
  DesktopAnswer (*saveBitmap)(const std::string& dir, TrecSaveBitmap& rec, std::string& fileName,
                              std::string& error) noexcept;
  DesktopAnswer (*saveBitmapPixels)(const std::string& dir, TrecSaveBitmap& rec, int32_t& width,
                                    int32_t& height, std::string& fileName,
                                    std::string& error) noexcept;
};

/// Incremented with every change of the table or of a type that its functions use.
inline constexpr int32_t kDesktopVersion = 5;

inline constexpr const char* kDesktopEntry = "rasterkit_desktop_dialogs";

/// Returns the table of version `version`; null if this library has another version. Valid until
/// the process ends.
using DesktopEntry = const DesktopDialogs*(int32_t version);
extern "C" RASTERKIT_EXPORT DesktopEntry rasterkit_desktop_dialogs;

}  // namespace rasterkit
