#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/pictures/reading/photo_facts.h>
#include <rasterkit/placement/placement.h>

#include "tool/reports/pdf_facts.h"

namespace rasterkit::tool {

/// Everything that `info` prints about a file.
struct PictureFacts {
  std::string file;
  /// Empty if the header could be read, and all pixels if they were decoded.
  std::string error;
  /// False if the header could not be read.
  bool isKnown = false;
  /// Whether all pixels could be decoded; nothing if that was not tried.
  std::optional<bool> verified;
  /// What of the pixels is missing or broken; found only by decoding.
  std::vector<std::string> damage;
  /// Why the file can have further pages that cannot be found; empty if it has none.
  std::string lostPages;
  std::vector<std::string> warnings;
  /// Detected from the content: "bmp", "jpeg" and so on; "unknown" for any other content, empty if
  /// the file could not be opened.
  std::string type;
  uint64_t bytes = 0;

  /// The members down to `grid` are set if the header was read.
  int width = 0, height = 0, bits = 0;
  int pages = 1;
  int paletteEntries = 0;
  bool transparent = false;
  std::optional<std::array<double, 2>> dpi;
  std::vector<std::string> metadata;
  /// "none", or the number type of a grid: "float32", "uint16" and so on.
  std::string grid = "none";

  PhotoFacts photo;
  /// Of the photograph: ISO 8601, maker, model; empty if not stated.
  std::string date, make, model;
  /// Every position that was found, and the coordinate system.
  Placement placement;
  /// Set for a TIFF file whose directories can be read, even if its pixels cannot.
  std::optional<TiffFacts> tiff;
  /// Set for a metafile, even if it cannot be drawn. Width and height are pixels at 96 per inch.
  std::optional<MetafileFacts> metafile;
  /// Set for a PDF file; facts about pixels are unset then.
  std::optional<PdfFacts> pdf;
};

/// Reads the header of a file, and decodes its pixels too if `verifies`. Never throws for a damaged
/// file.
PictureFacts GatherFacts(const std::string& file, bool verifies);

}  // namespace rasterkit::tool
