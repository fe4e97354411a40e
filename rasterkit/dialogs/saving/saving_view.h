#pragma once

#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace rasterkit {

/// The two kinds of work that run beside the window.
enum class SavingWork {
  /// Counting the bytes of the file.
  size,
  /// The pixels of the 1:1 view.
  part
};

/// A name that was chosen in another dialog.
struct ChosenName {
  /// Full name.
  std::string file;
  /// The dialog asked whether this file may be replaced.
  bool wasAsked = false;
};

/// What the model of saving needs from its window.
class SavingView {
 public:
  /// Called on the window's thread when the work is done.
  using Answer = std::function<void()>;
  /// Runs on another thread, touches nothing of the window, and ends soon after a stop. It does not
  /// throw.
  using Job = std::function<Answer(std::stop_token stop)>;

  /// Something changed: the view asks the model for all that it shows.
  virtual void ShowState() = 0;
  /// Other pixels, or another place, in the 1:1 view.
  virtual void ShowParts() = 0;
  /// Starts a job in place of the last one of its kind, whose answer is dropped then. The view may
  /// wait a moment for further changes.
  virtual void Start(SavingWork kind, Job job) = 0;
  /// Stops the job of a kind; its answer is dropped.
  virtual void Stop(SavingWork kind) = 0;
  /// Whether an existing file may be replaced.
  virtual bool AskReplace(const std::string& question) = 0;
  /// Another name from the desktop's dialog; nothing if the user canceled.
  virtual std::optional<ChosenName> AskName(const std::string& file) = 0;
  virtual void Close(bool isConfirmed) = 0;

 protected:
  ~SavingView() = default;
};

}  // namespace rasterkit
