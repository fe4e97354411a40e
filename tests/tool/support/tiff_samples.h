#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/support/tiff_file.h"
#include "tests/tool/support/run_tool.h"

/// TIFF files for the tool to work on.
namespace rasterkit::test {

/// Uncompressed, one strip; neighboring pixels differ.
TiffFile GrayTiff(uint32_t width, uint32_t height, uint16_t bits);
TiffFile ColorTiff(uint32_t width, uint32_t height);

/// Registers the map tags, which libtiff does not know by itself.
void DefineMapTags(TIFF* tiff);
/// Square pixels of `size` map units; x and y are the position of the top left corner.
void SetPosition(TIFF* tiff, double size, double x, double y);
/// Ground control points without a pixel size, in a named coordinate system.
void SetLooseTiePoints(TIFF* tiff);
void SetNoData(TIFF* tiff, const char* text);

/// 8-bit gray pages of those sizes; `copies` are the indexes of pages that are marked as a smaller
/// copy. Pixels of page i have the value 50 i.
void WritePages(const std::string& file, const std::vector<std::pair<uint32_t, uint32_t>>& sizes,
                const std::vector<size_t>& copies);

/// The same little-endian classic file with an unknown compression.
std::vector<uint8_t> WithUnknownCompression(std::vector<uint8_t> bytes);

/// Expects that every line on stderr is the tool's own and names the file.
void ExpectOwnWords(const std::string& err, const std::string& file);

/// Runs the tool with a named pipe as its last argument and writes the bytes into it.
ToolResult RunToolOnPipe(std::vector<std::string> arguments, const std::string& pipe,
                         const std::vector<uint8_t>& bytes);

}  // namespace rasterkit::test
