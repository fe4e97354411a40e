#pragma once

#include <rasterkit/bands/averaged_form.h>
#include <rasterkit/bands/mean_rows.h>
#include <rasterkit/bands/stage/band.h>
#include <rasterkit/raster/raster.h>

/// Rows of bits become rows of 8-bit gray without an 8-bit picture between them.
namespace rasterkit::detail {

/// True if pixels that are brought to this form are bits whose grays can be counted.
bool AreBitsOfGray(const Pixels& pixels, AveragedForm form);

/// Makes rows of a gray target from a 1-bit raster, as MeanRows makes them after BringToForm. Row 0
/// of `source` is row `sourceTop` of its picture, row 0 of `target` is row `targetTop` of the
/// result; `rows` are those of the result that are made. The raster holds the rows that their taps
/// cover.
void MakeGrayOfBits(const Raster& source, int sourceTop, const MeanAxes& axes, Raster& target,
                    int targetTop, RowRange rows);

}  // namespace rasterkit::detail
