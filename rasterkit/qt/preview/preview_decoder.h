#pragma once

#include <QImage>
#include <atomic>
#include <string>
#include <string_view>

/// A small copy of a picture file for the file dialogs. Internal to the room.
namespace rasterkit::detail {

struct Preview {
  /// Upright, as the file is loaded; null when there is a problem.
  QImage image;
  /// Key of the text that says why there is no image; empty when there is one.
  std::string_view problem;
  /// Size of the picture itself in pixels, upright.
  int width = 0, height = 0;
};

/// Decodes by content and shrinks, once, to at most `side` pixels wide and high; smaller pictures
/// stay as they are. Needs no display, and may run on any thread.
///
/// No file makes it fail: one that is broken, is no picture, would take more than 384 MiB or is
/// none to be read (a pipe, a device, a folder) gives a problem. Reading ends soon after
/// `isCancelled` is set; then the answer means nothing.
Preview DecodePreview(const std::string& fileName, int side, const std::atomic<bool>& isCancelled);

}  // namespace rasterkit::detail
