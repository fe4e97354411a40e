#pragma once

#include <memory>

#include <rasterkit/bands/colors/color_reader.h>
#include <rasterkit/bands/colors/row_rule.h>
#include <rasterkit/bands/stage/band_work.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// The work of a conversion of true color to 4 or 8 bits (see ConvertRaster). Partly transparent
/// pixels are painted onto white first. One pass numbers the colors as long as they fit, and
/// collects a sample of the pixels for an adaptive palette.
///
/// `made` is of the result's kind; its palette and its rows have no meaning.
std::unique_ptr<BandWork> MakeFewColors(const Raster& like, Sides size, Raster made);

/// Makes 8-bit indexes of the entries nearest to the colors. Transparent parts are painted onto
/// white first.
RowRule RuleOfPalette(std::shared_ptr<const ColorReader> reader, const HPALETTE& palette);

}  // namespace rasterkit::detail
