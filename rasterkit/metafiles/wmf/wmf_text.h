#pragma once

#include <optional>
#include <vector>

#include <rasterkit/drawing/ink/plane_affine.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>

namespace rasterkit::detail {

/// A text record, in logical units.
struct WmfText {
  /// In the charset of the selected font; a view into the record.
  std::span<const uint8_t> bytes;
  PointD origin;
  /// See text_option; `box` is valid if an option needs it.
  uint32_t options = 0;
  RectD box;
  /// Advances, one per byte; empty if the record has none.
  std::vector<double> steps;
};

/// Reads a text record of either type; returns nothing for other records. Throws FormatError if the
/// text is truncated.
std::optional<WmfText> ReadWmfText(const WmfRecord& record);

}  // namespace rasterkit::detail
