#pragma once

#include <string>

namespace rasterkit::tool {

/// Prints the palette of a picture on stdout, with how many pixels use each entry, and returns the
/// exit code: exitAnswerIsNo for a picture without a palette. Throws Failure(exitInputUnreadable).
int ShowPalette(const std::string& file, bool json);

}  // namespace rasterkit::tool
