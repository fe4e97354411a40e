#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/isolation.h>

namespace rasterkit::detail {

/// Sets where the editor reads the pictures that its user opens: in this process (the default), or
/// each one in a worker process, for programs whose users open any file. May be called on any
/// thread.
void SetEditorIsolation(Isolation isolation);

/// Loads a picture for the editor where SetEditorIsolation says. In this process, returns null as
/// LoadGraphic does; from a worker process, throws as LoadGraphicIsolated does.
std::unique_ptr<TGraphic> LoadForEditor(const std::string& fileName);

}  // namespace rasterkit::detail
