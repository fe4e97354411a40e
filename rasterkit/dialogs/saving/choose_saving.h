#pragma once

#include <optional>
#include <string>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/runtime/export.h>

class QWidget;

namespace rasterkit {

/// Where and how a picture is saved.
struct SavingChoice {
  /// Full name.
  std::string file;
  RecipeSave save;
  /// The user agreed that this existing file is replaced.
  bool mayReplace = false;
};

/// How the window of saving starts.
struct SavingStart {
  /// Full name that is suggested.
  std::string file;
  RecipeSave save;
  /// The name is chosen in the desktop's own dialog; otherwise the window has places and a preview.
  bool usesDesktopDialog = true;
};

/// Lets the user choose name, type and settings for `picture` (with its steps), and shows before
/// saving what would be lost, whether the compressed pixels are kept, the size of the file and the
/// pixels at the chosen quality. It writes nothing: RecipeOutput writes what is shown. Nothing if
/// the user canceled. Throws Error if no window can be shown.
RASTERKIT_EXPORT std::optional<SavingChoice> ChooseSaving(const Picture& picture,
                                                          const SavingStart& start,
                                                          QWidget* parent = nullptr);

/// The settings alone, for a file that is already chosen.
RASTERKIT_EXPORT std::optional<RecipeSave> ChooseSaveSettings(const Picture& picture,
                                                              const SavingChoice& start,
                                                              QWidget* parent = nullptr);

/// Lets the user choose a file to open: every kind that the library reads, PDF files and metafiles
/// too. Empty if the user canceled.
RASTERKIT_EXPORT std::string ChooseFileToOpen(const std::string& folder,
                                              bool usesDesktopDialog = true,
                                              QWidget* parent = nullptr);

}  // namespace rasterkit
