#pragma once

#include <functional>
#include <optional>
#include <string>

#include <rasterkit/dialogs/desktop/desktop_dialogs.h>

namespace rasterkit::tool {

/// The windows of `edit`, `save-as` and the verbs with --dialog. Their library is loaded only when
/// needed: the tool itself requires no display and no toolkit. One at a time, on the main thread.
///
/// Each function shows one window and returns after the user confirmed it. It throws
/// Failure(exitAnswerIsNo) if the user canceled, and Failure(exitOutputNotWritten) if the window
/// failed. An interruption ends the process while a window is open. `input` is the name of the
/// picture, for messages.
class Desktop {
 public:
  /// The windows read files in worker processes, unless --no-isolate says otherwise.
  /// Throws Failure(exitOutputNotWritten) if the dialogs are not installed or no window can be
  /// opened.
  Desktop();
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  /// See the functions of the same names in the library.
  RecipeCrop ChooseCrop(TBitmap& pixels, const Picture& picture, const ChooseCropOptions& options,
                        const std::string& input) const;
  AdjustColors ChooseValues(const TBitmap& pixels, const AdjustColors& start,
                            const std::string& input) const;
  MakeMono ChooseThreshold(const TBitmap& pixels, const MakeMono& start,
                           const std::string& input) const;
  RecipeResize ChooseSize(const Picture& picture, const RecipeResize& start,
                          const std::string& input) const;
  SavingChoice ChooseSaving(const Picture& picture, const SavingStart& start,
                            const std::string& input) const;
  /// Lets the user choose a picture or PDF file in the current folder or elsewhere.
  std::string ChooseFile() const;
  EditedPicture EditPicture(const std::string& file, const EditPictureOptions& options) const;

  /// Shows a message until the user closes it.
  void Tell(const std::string& text) const;

 private:
  const DesktopDialogs& dialogs_;
};

}  // namespace rasterkit::tool
