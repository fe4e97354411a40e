#pragma once

#include <array>
#include <optional>

#include <rasterkit/metafiles/wmf/wmf_records.h>

#include "tests/support/field_bytes.h"

namespace rasterkit::test {

/// Builds a WMF file record by record; header and last record are added.
struct WmfFile {
  /// Left, top, right, bottom in logical units; without it, no placeable header is written.
  std::optional<std::array<int16_t, 4>> box;
  uint16_t unitsPerInch = 96;
  uint16_t objects = 8;
  std::vector<uint8_t> records;
  bool hasEnd = true;

  WmfFile& Add(detail::WmfFunction function, const FieldBytes& parameters = {});
  /// Adds a record whose parameters have a word each.
  WmfFile& Add(detail::WmfFunction function, std::initializer_list<int64_t> words) {
    return Add(function, FieldBytes().Words(words));
  }
  std::vector<uint8_t> Bytes() const;
};

}  // namespace rasterkit::test
