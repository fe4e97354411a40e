#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/codecs/jpeg/jpeg_files.h"
#include "tests/support/corpus.h"

/// JPEG files with segments of their own, and the JPEG files of the corpus.
namespace rasterkit::test {

inline std::vector<uint8_t> BytesOfText(std::string_view text) {
  return {text.begin(), text.end()};
}

inline std::vector<uint8_t> Joined(std::vector<uint8_t> first, std::span<const uint8_t> second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// A segment with its marker.
inline std::vector<uint8_t> Segment(uint8_t marker, std::span<const uint8_t> payload) {
  const size_t length = payload.size() + 2;
  return Joined({0xFF, marker, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)},
                payload);
}

inline std::vector<uint8_t> Segment(uint8_t marker, std::string_view payload) {
  return Segment(marker, BytesOfText(payload));
}

/// The file with more bytes behind its start marker.
inline std::vector<uint8_t> WithHead(std::vector<uint8_t> file, std::span<const uint8_t> head) {
  file.insert(file.begin() + 2, head.begin(), head.end());
  return file;
}

/// Little-endian EXIF block with orientation 6 and 300 dpi.
inline std::vector<uint8_t> SmallExif() {
  std::vector<uint8_t> block = {'I', 'I', 42, 0, 8, 0, 0, 0, 4, 0};
  const auto entry = [&](uint16_t tag, uint8_t type, uint8_t value) {
    for (const uint8_t byte :
         std::initializer_list<uint8_t>{static_cast<uint8_t>(tag), static_cast<uint8_t>(tag >> 8),
                                        type, 0, 1, 0, 0, 0, value, 0, 0, 0}) {
      block.push_back(byte);
    }
  };
  constexpr uint8_t kValuesAt = 10 + 4 * 12 + 4;
  entry(274, 3, 6);
  entry(282, 5, kValuesAt);
  entry(283, 5, kValuesAt + 8);
  entry(296, 3, 2);
  block.insert(block.end(), 4, 0);
  for (int i = 0; i < 2; i++) {
    block.insert(block.end(), {0x2C, 1, 0, 0, 1, 0, 0, 0});
  }
  return block;
}

inline std::vector<uint8_t> ExifSegment(std::span<const uint8_t> block) {
  using std::string_view_literals::operator""sv;
  return Segment(0xE1, Joined(BytesOfText("Exif\0\0"sv), block));
}

inline std::vector<uint8_t> BytesOfFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// All JPEG files of the corpus, recognized by their first bytes.
inline std::vector<std::filesystem::path> CorpusJpegs() {
  std::vector<std::filesystem::path> files;
  for (const CorpusEntry& entry : CorpusEntries()) {
    const std::filesystem::path path = CorpusFolder() / entry.at("path");
    std::ifstream file(path, std::ios::binary);
    char start[3] = {};
    file.read(start, sizeof start);
    if (std::string_view(start, 3) == "\xFF\xD8\xFF") files.push_back(path);
  }
  return files;
}

}  // namespace rasterkit::test
