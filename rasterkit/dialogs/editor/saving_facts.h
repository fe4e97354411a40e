#pragma once

#include <string>
#include <vector>

#include <rasterkit/pictures/report.h>

namespace rasterkit {

/// What a window says about a plan: "Lossless: the compressed pixels are moved", "Compressed again,
/// because ...".
std::string SavingText(const Report& plan);

/// A line for each loss: "EXIF: a BMP file holds none".
std::vector<std::string> LossTexts(const Report& plan);

/// "34.3", with the decimal mark of the texts.
std::string MebibyteText(uint64_t bytes);

}  // namespace rasterkit
