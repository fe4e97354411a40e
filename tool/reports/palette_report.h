#pragma once

#include <string>
#include <vector>

namespace rasterkit::tool {

/// Prints the palette of a picture on stdout, with the number of pixels per entry. Returns the exit
/// code: exitAnswerIsNo for a picture without a palette. Throws Failure(exitInputUnreadable).
int ShowPalette(const std::string& file, bool json);

/// Prints one palette that fits all of the pictures.
int ShowCommonPalette(const std::vector<std::string>& files, bool json);

}  // namespace rasterkit::tool
