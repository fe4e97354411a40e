#pragma once

#include <rasterkit/dialogs/crop/crop_units.h>

namespace rasterkit::test {

/// 600 x 400 pixels at 254 dpi (a tenth of a millimeter each), half a meter on the map.
inline CropFacts FactsOfAPlan() {
  CropFacts facts;
  facts.width = 600;
  facts.height = 400;
  facts.resolution = {254, 254};
  facts.affine = Affine{0.5, 0, 0, -0.5, 1000.25, 1999.75};
  facts.mapUnit = MapUnitNamed("m");
  return facts;
}

/// The same without resolution and position.
inline CropFacts PlainFacts() {
  CropFacts facts;
  facts.width = 600;
  facts.height = 400;
  return facts;
}

/// Turned by atan(3/4); a pixel is 0.5 units wide and 1 high.
inline CropFacts TurnedFacts() {
  CropFacts facts = PlainFacts();
  facts.affine = Affine{0.4, 0.3, 0.6, -0.8, 1000, 2000};
  return facts;
}

}  // namespace rasterkit::test
