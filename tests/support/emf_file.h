#pragma once

#include <array>
#include <string>

#include <rasterkit/metafiles/emf/emf_records.h>

#include "tests/support/field_bytes.h"

namespace rasterkit::test {

/// Builds an EMF file record by record; header and last record are added. By default a pixel of its
/// device is 0.25 mm, and the picture has 100 x 80 of them.
struct EmfFile {
  /// Left, top, right, bottom; right and bottom are included.
  std::array<int32_t, 4> bounds = {0, 0, 99, 79};
  /// In 0.01 mm.
  std::array<int32_t, 4> frame = {0, 0, 2500, 2000};
  int32_t deviceWidth = 1000, deviceHeight = 800, deviceWidthMm = 250, deviceHeightMm = 200;
  /// Written only if not 0.
  int32_t micrometersX = 0, micrometersY = 0;
  std::u16string description;
  std::vector<uint8_t> records;
  uint32_t recordCount = 2;
  bool hasEnd = true;

  EmfFile& Add(detail::EmfType type, const FieldBytes& fields = {});
  std::vector<uint8_t> Bytes() const;
};

}  // namespace rasterkit::test
