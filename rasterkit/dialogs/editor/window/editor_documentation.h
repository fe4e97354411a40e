#pragma once

#include <QString>
#include <memory>

#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The full name of the installed documentation of the windows; empty if it is not installed.
RASTERKIT_EXPORT QString InstalledDocumentation();

/// A window with a short help: how the editor works, and its keys, one per line.
RASTERKIT_EXPORT std::unique_ptr<TScaledForm> MakeEditorHelp(const QString& keys,
                                                             QWidget* parent = nullptr);

}  // namespace rasterkit
