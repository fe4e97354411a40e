#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/metafiles/read_metafile_facts.h>

#include "tool/pictures/placement/geo_position.h"
#include "tool/reports/pdf_facts.h"
#include "tool/reports/photo_facts.h"

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

  /// The rest down to `grid` is known of a picture that was decoded.
  int width = 0, height = 0, bits = 0;
  int pages = 1;
  int paletteEntries = 0;
  bool transparent = false;
  std::optional<std::array<double, 2>> dpi;
  std::vector<std::string> metadata;
  /// "none", or the numbers of a grid: "float32", "uint16" ...
  std::string grid = "none";

  PhotoFacts photo;
  std::vector<GeoPosition> positions;
  /// Of a TIFF file whose directories can be read, also when its pixels cannot.
  std::optional<TiffFacts> tiff;
  /// Of a metafile, also when it cannot be drawn. Pixels are those at 96 an inch.
  std::optional<MetafileFacts> metafile;
  /// Of a PDF file that was read: nothing is known of pixels then.
  std::optional<PdfFacts> pdf;
};

/// Reads and decodes the file; never throws for a bad one.
PictureFacts GatherFacts(const std::string& file);

}  // namespace rasterkit::tool
