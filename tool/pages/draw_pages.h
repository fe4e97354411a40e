#pragma once

#include <string>
#include <vector>

#include "tool/command/batch.h"
#include "tool/command/output_options.h"

namespace rasterkit::tool {

enum class PageColors { asDrawn, gray, mono };

struct PdfOptions {
  OutputOptions output;
  PictureOptions picture;
  /// Page list as typed, already checked. If empty, the first page, or all pages with --out-dir.
  std::string pages;
  double dpi = 150;
  /// Degrees, positive is counter-clockwise: -90, 0, 90, 180 or 270.
  int rotate = 0;
  PageColors colors = PageColors::asDrawn;
  int threshold = 125;
  std::string password;
};

/// Draws pages of PDF files and writes each as a picture. Prints sizes and memory on stderr first.
/// Returns the exit code.
int DrawPages(const PdfOptions& options);

}  // namespace rasterkit::tool
