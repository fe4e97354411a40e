#pragma once

#include <string>

namespace rasterkit::tool {

/// Escapes text from a file for printing: control characters, quotes, and bytes that are not valid
/// UTF-8.
std::string Printable(const std::string& text);

/// Escapes what a terminal would act on, so that a file name cannot move the cursor or start a new
/// line: control characters, marks that turn the direction of text ("\x1b", "\n", "\u202e"), and
/// bytes that are not valid UTF-8. For names and messages, which stay readable otherwise.
std::string OnOneLine(const std::string& text);

/// Prints "rasterkit: TEXT" as one line on stderr.
void PrintMessage(const std::string& text);

}  // namespace rasterkit::tool
