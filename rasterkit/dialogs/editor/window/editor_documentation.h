#pragma once

#include <QString>
#include <memory>

#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/host/documentation.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A window with a short help: how the editor works, and its keys, one per line.
RASTERKIT_EXPORT std::unique_ptr<TScaledForm> MakeEditorHelp(const QString& keys,
                                                             QWidget* parent = nullptr);

}  // namespace rasterkit
