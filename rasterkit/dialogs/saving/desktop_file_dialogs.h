#pragma once

#include <functional>
#include <optional>
#include <string>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/dialogs/saving/saving_view.h>

class QWidget;

/// The desktop's own dialogs for files. Internal to this folder.
namespace rasterkit::detail {

/// Whether the desktop has file dialogs of its own that Qt can show.
bool HasDesktopDialogs();

/// Lets the user choose a name to save under, beginning with `file`. The dialog asks before an
/// existing file is chosen. Nothing if the user canceled.
std::optional<ChosenName> AskSaveName(const std::string& file, PictureType type, QWidget* parent);

/// Lets the user choose an existing picture of any kind; empty if the user canceled.
std::string AskNameToOpen(const std::string& folder, QWidget* parent);

/// The functions that the windows use. A test sets others instead.
struct DesktopFileDialogs {
  std::function<bool()> areThere = HasDesktopDialogs;
  std::function<std::optional<ChosenName>(const std::string&, PictureType, QWidget*)> askToSave =
      AskSaveName;
  std::function<std::string(const std::string&, QWidget*)> askToOpen = AskNameToOpen;
};

DesktopFileDialogs& TheDesktopFileDialogs();

}  // namespace rasterkit::detail
