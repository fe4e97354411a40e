#pragma once

#include <QImage>
#include <atomic>
#include <string>
#include <string_view>

#include <rasterkit/runtime/isolation.h>

/// A thumbnail of a picture file for the file dialogs. Internal to this folder.
namespace rasterkit::detail {

struct Preview {
  /// Upright, as the file is loaded; null if there is a problem.
  QImage image;
  /// Key of the text that says why there is no image; empty if there is one.
  std::string_view problem;
  /// Size of the picture itself in pixels, upright.
  int width = 0, height = 0;
};

/// Detects the format by content, decodes the file and shrinks it to at most `side` pixels wide and
/// high; smaller pictures keep their size. Requires no display and is thread-safe.
///
/// Never throws: a file that is damaged, is not a picture, would need more than 384 MiB or cannot
/// be read safely (a pipe, a device, a folder) gives a problem. Reading ends soon after
/// `isCanceled` is set; the result is meaningless then.
Preview DecodePreview(const std::string& fileName, int side, const std::atomic<bool>& isCanceled);

/// Sets where previews are decoded: in this process (the default), or each one in a worker process,
/// for programs whose users look into any folder. May be called on any thread.
void SetPreviewIsolation(Isolation isolation);

}  // namespace rasterkit::detail
