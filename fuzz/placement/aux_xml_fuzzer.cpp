#include <cmath>
#include <cstdint>
#include <string_view>

#include <rasterkit/placement/aux_xml.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    const rasterkit::detail::AuxXml aux =
        rasterkit::detail::ParseAuxXml({reinterpret_cast<const char*>(data), size});
    if (aux.affine) Require(aux.affine->IsFinite());
    for (const auto& point : aux.controlPoints) {
      Require(std::isfinite(point.column) && std::isfinite(point.y));
    }
    Require(aux.rationalModel.empty() || aux.rationalModel.size() == 92);
    rasterkit::CoordinateSystem system;
    system.wkt = aux.wkt;
    system.Description();
  } catch (const rasterkit::FormatError&) {
  }
  return 0;
}
