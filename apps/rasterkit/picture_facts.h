#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "apps/rasterkit/photo_facts.h"
#include "apps/rasterkit/world_file.h"

namespace rasterkit::tool {

/// All that `info` says about one file.
struct PictureFacts {
  std::string file;
  /// Empty when the picture could be read.
  std::string error;
  std::vector<std::string> warnings;
  /// By content: "bmp", "jpeg" ...; "unknown" when nothing fits, empty when the file could not be
  /// opened.
  std::string type;
  uint64_t bytes = 0;

  /// The rest is known of a picture that was decoded.
  int width = 0, height = 0, bits = 0;
  int paletteEntries = 0;
  bool transparent = false;
  std::optional<std::array<double, 2>> dpi;
  std::vector<std::string> metadata;

  PhotoFacts photo;
  std::optional<WorldFile> worldFile;
};

/// Reads and decodes the file; never throws for a bad one.
PictureFacts GatherFacts(const std::string& file);

}  // namespace rasterkit::tool
