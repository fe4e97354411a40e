#pragma once

#include <rasterkit/bands/averaged_form.h>
#include <rasterkit/bands/stage/band.h>
#include <rasterkit/kernels/halftone/halftone_axis.h>

/// Rows of bits become rows of 8-bit gray without an 8-bit picture between them.
namespace rasterkit::detail {

/// True if pixels that are brought to this form are bits whose grays can be counted.
bool AreBitsOfGray(const Pixels& pixels, AveragedForm form);

/// Of the columns, counted from the left edge of a band, and of the rows of a whole picture.
struct BitAxes {
  const kernels::HalftoneAxis& columns;
  const kernels::HalftoneAxis& rows;
};

/// Makes rows of a gray target from a band of 1-bit pixels, as MeanRows makes them after
/// BringToForm. `rows` counts from the top of the result. The band holds all that their taps cover.
void MakeGrayOfBits(const Band& source, const BitAxes& axes, Band& target, RowRange rows);

}  // namespace rasterkit::detail
