#pragma once

#include <functional>
#include <optional>
#include <stop_token>
#include <string>

#include <rasterkit/runtime/limits.h>

namespace rasterkit {

/// How a call runs. Handed to the calls that touch pixels; never stored in a picture.
struct Run {
  /// 0: one per processor. No result depends on it.
  int threads = 0;
  /// Limits of this call; nothing: those of the calling thread.
  std::optional<Limits> limits;
  /// Called on the calling thread with 0 to 1, never going back.
  std::function<void(double)> progress;
  /// Ends the call within 100 ms with CanceledError; no file is left.
  std::stop_token cancel;
  /// Folder of the scratch file that a large picture may need; empty: that of the target, or the
  /// system's folder for temporary files. The file has no name and never stays.
  std::string scratchFolder;
  /// Rows that pass through the steps at a time; 0: chosen by their size. No result depends on it.
  int bandRows = 0;
};

}  // namespace rasterkit
