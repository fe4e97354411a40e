#pragma once

#include <functional>
#include <string>

#include <rasterkit/qt/latest_task.h>
#include <rasterkit/qt/preview/preview_decoder.h>

/// Previews decoded beside the thread that shows them. Internal to the room.
namespace rasterkit::detail {

/// Decodes one file at a time on a thread of its own, always the one asked for last. May be
/// destroyed at any moment and does not wait then; see LatestTask.
class PreviewLoader {
 public:
  using Answer = std::function<void(const Preview& preview)>;

  /// `answer` is called on the thread that made this object, through Qt's loop.
  explicit PreviewLoader(Answer answer);

  /// Asks for a file; what was asked for before is given up.
  void Load(std::string fileName, int side);
  /// Gives up what was asked for; it is not answered.
  void Cancel() { task_.Cancel(); }

 private:
  Answer answer_;
  LatestTask task_;
};

}  // namespace rasterkit::detail
