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

/// The tags of maps, which libtiff does not know by itself.
void DefineMapTags(TIFF* tiff);
/// Square pixels of `size` map units; x and y are those of the upper left corner.
void SetPosition(TIFF* tiff, double size, double x, double y);
/// Ground control points without a pixel size, in a coordinate system that is named.
void SetLooseTiePoints(TIFF* tiff);
void SetNoData(TIFF* tiff, const char* text);

/// 8-bit gray pages of those sizes; `copies` are the indexes of pages that call themselves a
/// smaller copy. Pixels of page i are 50 i.
void WritePages(const std::string& file, const std::vector<std::pair<uint32_t, uint32_t>>& sizes,
                const std::vector<size_t>& copies);

/// The same little-endian classic file, but packed in a way that nobody knows.
std::vector<uint8_t> WithUnknownCompression(std::vector<uint8_t> bytes);

/// Every line is the tool's own and names the file: no library wrote there.
void ExpectOwnWords(const std::string& err, const std::string& file);

/// Runs the tool with a named pipe as its last argument and the bytes coming out of it.
ToolResult RunToolOnPipe(std::vector<std::string> arguments, const std::string& pipe,
                         const std::vector<uint8_t>& bytes);

}  // namespace rasterkit::test
