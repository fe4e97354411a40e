// The file name "-": stdin as an input, stdout as an output.

#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// True for "-". A file of this name is "./-".
bool IsStandardStream(const std::string& file);

/// The bytes of stdin to its end, within the limit of memory. Throws Failure(exitInputUnreadable),
/// also if they were taken before.
std::vector<uint8_t> TakeStandardInput();

/// A name under which the file can be read, as often as needed: for "-" that of a file in memory
/// with the bytes of stdin, which lasts as long as the process; else the name itself. Throws as
/// TakeStandardInput does.
std::string ReadableName(const std::string& file);

/// Writes all bytes of an output to stdout. Throws Failure(exitOutputNotWritten), also if the
/// reader of a pipe is gone.
void WriteStandardOutput(std::span<const uint8_t> bytes);

/// Throws Failure(exitWrongUsage) if stdout is a terminal.
void RequireNoTerminal();

}  // namespace rasterkit::tool
