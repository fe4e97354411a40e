#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "tests/codecs/tiff/pages/page_pixels.h"

/// TIFF files of all kinds of pixels and blocks, sound and damaged.
namespace rasterkit::test {

struct MadePage {
  std::string name;
  std::vector<uint8_t> bytes;
};

/// The forms in which pages are made: compressions, strips, tiles, planes, orders.
std::vector<TiffForm> MadeForms();

/// A file of such pixels.
std::vector<uint8_t> PageOf(const Pixels& pixels, const TiffForm& form, int threads = 1);

/// The file, and the same with damages: noise in the data, blocks beyond the end, too short, left
/// out, without bytes.
std::vector<MadePage> Damaged(const std::string& name, const std::vector<uint8_t>& bytes,
                              std::mt19937& random);

/// Every kind of pixels in every form where `damaged` is false, else a choice of them with damages.
std::vector<MadePage> MadePages(bool damaged);

}  // namespace rasterkit::test
