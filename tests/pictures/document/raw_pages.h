#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <span>
#include <string>
#include <vector>

/// The directories of a TIFF file, read without the library.
namespace rasterkit::test {

struct RawTag {
  uint16_t type = 0;
  uint64_t count = 0;
  /// In the order of bytes of the file.
  std::string bytes;
  friend bool operator==(const RawTag&, const RawTag&) = default;
};

struct RawPage {
  /// All but those that lead to other places of the file.
  std::map<uint16_t, RawTag> tags;
  /// Encoded strips or tiles.
  std::vector<std::string> blocks;
  /// Directories by the tag that leads to them.
  std::map<uint16_t, std::vector<RawPage>> below;
  friend bool operator==(const RawPage&, const RawPage&) = default;

  uint64_t Number(uint16_t tag) const;
};

struct RawDocument {
  bool isBigEndian = false, isBigTiff = false;
  /// Directories of the chain, smaller copies and masks among them.
  std::vector<RawPage> chain;
};

/// Names what differs, for messages.
void PrintTo(const RawPage& page, std::ostream* out);

/// Throws std::runtime_error for a file that it cannot follow.
RawDocument ReadRawPages(std::span<const uint8_t> bytes);
RawDocument ReadRawPages(const std::string& file);

/// Tag 254; 0 without it.
uint64_t SubfileType(const RawPage& page);

/// The directories of the chain by page: each with its smaller copies and masks.
std::vector<std::vector<RawPage>> PagesOf(const RawDocument& document);

}  // namespace rasterkit::test
