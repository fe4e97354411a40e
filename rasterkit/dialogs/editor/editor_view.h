#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

#include <rasterkit/dialogs/saving/choose_saving.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit {

/// Work that takes longer than a blink: it runs on another thread and touches nothing of the
/// window.
struct EditorJob {
  /// What the window says meanwhile: "Turning the picture".
  std::string title;
  /// Whether it writes a file of the user.
  bool isSave = false;
  /// Throws to fail, CanceledError where `cancel` ends it. `progress` may be called from any
  /// thread, 0 to 1.
  std::function<void(std::stop_token cancel, const std::function<void(double)>& progress)> work;
  /// On the window's thread. `error` is empty on success; `wasCanceled` without an error.
  std::function<void(const std::string& error, bool wasCanceled)> done;
};

enum class EditorQuestion {
  /// Save, discard or go on editing.
  loseWork,
  /// Replace an existing file.
  replaceFile,
  /// The file was changed by another program: replace it nevertheless.
  fileChanged,
  /// Steps of a window that crashed: take them up again.
  takeUpJournal
};
enum class EditorAnswer { yes, no, cancel };

/// What the model of the editor needs from its window. None of the functions throws; a test has its
/// own view that answers at once and runs jobs where they are started.
class EditorView {
 public:
  /// Another picture is shown: pixels (null: nothing) that stay until the next call.
  virtual void ShowPixels(TBitmap* pixels) = 0;
  /// Title, numbers, what is enabled, list of steps, pages: the view asks the model.
  virtual void ShowState() = 0;
  /// One job at a time. A view without threads runs `work` and `done` before it returns.
  virtual void StartJob(EditorJob job) = 0;
  virtual void CancelJob() = 0;
  virtual EditorAnswer Ask(EditorQuestion question, const std::string& text) = 0;
  virtual void Tell(const std::string& text) = 0;

  virtual std::optional<RecipeCrop> AskCrop(TBitmap& pixels, const Picture& picture) = 0;
  virtual std::optional<AdjustColors> AskValues(const TBitmap& pixels) = 0;
  virtual std::optional<MakeMono> AskThreshold(const TBitmap& pixels) = 0;
  virtual std::optional<RecipeResize> AskSize(const Picture& picture) = 0;
  virtual std::optional<SavingChoice> AskSaving(const Picture& result,
                                                const SavingStart& start) = 0;
  virtual std::optional<RecipeSave> AskSettings(const Picture& result,
                                                const SavingChoice& start) = 0;
  virtual std::string AskFileToOpen(const std::string& folder) = 0;

  virtual void OpenHelp() = 0;
  /// Closes the window; `isSaved` tells whether a file was written.
  virtual void Close(bool isSaved) = 0;

 protected:
  ~EditorView() = default;
};

}  // namespace rasterkit
