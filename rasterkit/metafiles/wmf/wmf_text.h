#pragma once

#include <optional>
#include <vector>

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>

namespace rasterkit::detail {

/// A text as its record states it, in logical units.
struct WmfText {
  /// In the charset of the font that is selected; they lie in the record.
  std::span<const uint8_t> bytes;
  PointD origin;
  /// See text_option; `box` is meant where one of them needs it.
  uint32_t options = 0;
  RectD box;
  /// From each byte to the next; empty where the record has none.
  std::vector<double> steps;
};

/// The text of a record of either kind of text, nothing for other records. Throws FormatError when
/// the record ends before its text does.
std::optional<WmfText> ReadWmfText(const WmfRecord& record);

}  // namespace rasterkit::detail
