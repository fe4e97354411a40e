#pragma once

#include <string>

namespace rasterkit::tool {

/// Prints the palette of a picture on stdout, with the number of pixels per entry. Returns the exit
/// code: exitAnswerIsNo for a picture without a palette. Throws Failure(exitInputUnreadable).
int ShowPalette(const std::string& file, bool json);

}  // namespace rasterkit::tool
