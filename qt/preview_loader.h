#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <rasterkit/qt/preview_decoder.h>

/// Previews decoded beside the thread that shows them. Internal to the room.
namespace rasterkit::detail {

/// Decodes one file at a time on a thread of its own, always the one asked for last. May be
/// destroyed at any moment and does not wait then: a decoder that cannot be interrupted runs to its
/// end unheard, and is joined before the application object goes.
class PreviewLoader : public QObject {
 public:
  using Answer = std::function<void(const Preview& preview)>;

  /// `answer` is called on this object's thread, through Qt's loop.
  explicit PreviewLoader(Answer answer);
  ~PreviewLoader() override;

  /// Asks for a file; what was asked for before is given up.
  void Load(std::string fileName, int side);
  /// Gives up what was asked for; it is not answered.
  void Cancel();

 private:
  struct Job;
  struct Request {
    std::string fileName;
    int side = 0;
  };

  static void Run(const std::shared_ptr<Job>& job);
  void Start(Request request);
  void Finish(const std::shared_ptr<Job>& job, const Preview& preview);

  Answer answer_;
  std::shared_ptr<Job> job_;
  std::thread thread_;
  std::optional<Request> next_;
};

/// Waits for decoders that outlived their dialogs.
void JoinLatePreviews();

}  // namespace rasterkit::detail
