#pragma once

#include <functional>
#include <string>

#include <rasterkit/qt/latest_task.h>
#include <rasterkit/qt/preview/preview_decoder.h>

/// Previews decoded on another thread than the one that shows them. Internal to this folder.
namespace rasterkit::detail {

/// Decodes one file at a time on a separate thread, always the latest one requested. May be
/// destroyed at any time without waiting; see LatestTask.
class PreviewLoader {
 public:
  using Answer = std::function<void(const Preview& preview)>;

  /// `answer` is called on the thread that created this object, through Qt's event loop.
  explicit PreviewLoader(Answer answer);

  /// Requests a file and cancels the previous request.
  void Load(std::string fileName, int side);
  /// Cancels the request; it is not answered.
  void Cancel() { task_.Cancel(); }

 private:
  Answer answer_;
  LatestTask task_;
};

}  // namespace rasterkit::detail
