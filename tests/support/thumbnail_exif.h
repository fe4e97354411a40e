#pragma once

#include <string>

#include "tests/support/exif_builder.h"

/// EXIF sections that carry a thumbnail.
namespace rasterkit::test {

/// An EXIF section's content, and where its thumbnail's directory lies, counted from the TIFF
/// header.
struct ThumbnailExif {
  std::string content;
  uint32_t directory = 0;
};

/// Orientation 6, then the thumbnail's directory (JPEG compression, place and length), the
/// thumbnail's bytes behind it, and `behind`.
inline ThumbnailExif ExifWithThumbnail(const std::string& thumbnail,
                                       ByteOrder order = ByteOrder::intel,
                                       const std::string& behind = "") {
  const TiffWriter writer(order);
  const std::vector<TiffEntry> main = {writer.Short(274, 6), writer.Ascii(271, "Some Camera")};
  ThumbnailExif exif;
  exif.directory = 8 + static_cast<uint32_t>(writer.Directory(8, main).size());
  const auto entries = [&](uint32_t place) {
    return std::vector<TiffEntry>{writer.Short(259, 6), writer.LongEntry(513, place),
                                  writer.LongEntry(514, static_cast<uint32_t>(thumbnail.size()))};
  };
  const auto directoryBytes =
      static_cast<uint32_t>(writer.Directory(exif.directory, entries(0)).size());
  exif.content =
      ExifContent(writer.Header() + writer.Directory(8, main, exif.directory) +
                  writer.Directory(exif.directory, entries(exif.directory + directoryBytes)) +
                  thumbnail + behind);
  return exif;
}

}  // namespace rasterkit::test
