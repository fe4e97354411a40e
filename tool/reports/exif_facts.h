#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/pictures/reading/photo_facts.h>

namespace rasterkit::tool {

/// What the header of a photograph states.
struct ExifFacts {
  struct Field {
    /// "main", "exif", "gps", "interop", "thumbnail".
    const char* directory;
    uint16_t tag;
    /// Empty for uncommon tags.
    std::string name;
    std::string value;
  };
  struct Section {
    std::string marker;
    /// See PhotoSection.
    std::string kind;
    size_t place, bytes;
  };
  struct Thumbnail {
    size_t bytes;
    int width, height;
  };

  std::string file;
  /// Why the file cannot be read; empty on success.
  std::string error;
  int width = 0, height = 0;
  PhotoFacts photo;
  /// "II", "MM", or empty.
  std::string byteOrder;
  /// "2019-07-04T13:05:09"; empty if there is no valid date.
  std::string date;
  std::vector<std::string> comments;
  std::optional<Thumbnail> thumbnail;
  /// Of a JPEG file.
  std::vector<Section> sections;
  std::vector<Field> fields;
  std::vector<std::string> warnings;
};

/// Reads the header. Never throws for the content of a file: `error` says what is wrong.
ExifFacts ReadExifFactsOf(const std::string& file);

}  // namespace rasterkit::tool
