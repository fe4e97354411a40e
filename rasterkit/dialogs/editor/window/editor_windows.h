#pragma once

#include <QUrl>
#include <functional>
#include <optional>
#include <string>

#include <rasterkit/dialogs/crop/choose_crop.h>
#include <rasterkit/dialogs/saving/choose_saving.h>
#include <rasterkit/dialogs/size/choose_size.h>
#include <rasterkit/dialogs/values/choose_values.h>
#include <rasterkit/runtime/export.h>

class QWidget;

namespace rasterkit {

/// What an editor opens over its window. A test fills in answers of its own.
struct EditorWindows {
  std::function<std::optional<RecipeCrop>(TBitmap& pixels, const Picture& picture,
                                          const ChooseCropOptions& options, QWidget* parent)>
      crop;
  std::function<std::optional<AdjustColors>(const TBitmap& pixels, QWidget* parent)> values;
  std::function<std::optional<MakeMono>(const TBitmap& pixels, QWidget* parent)> threshold;
  std::function<std::optional<RecipeResize>(const Picture& picture, QWidget* parent)> size;
  std::function<std::optional<SavingChoice>(const Picture& picture, const SavingStart& start,
                                            QWidget* parent)>
      saving;
  std::function<std::optional<RecipeSave>(const Picture& picture, const SavingChoice& start,
                                          QWidget* parent)>
      settings;
  std::function<std::string(const std::string& folder, bool usesDesktopDialog, QWidget* parent)>
      fileToOpen;
  /// Opens a document with the desktop's program for it; false if there is none.
  std::function<bool(const QUrl& document)> document;
};

/// The windows of this library.
RASTERKIT_EXPORT EditorWindows UsualEditorWindows();

}  // namespace rasterkit
