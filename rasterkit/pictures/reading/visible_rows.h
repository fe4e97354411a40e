#pragma once

#include <string>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Converts the frame to a picture for viewing, and reports what was done to numbers: 16-bit
/// integers are shown with their whole range, other numbers between their minimum and maximum. The
/// value `noData` of the file is white and does not count for these.
RASTERKIT_EXPORT Raster VisibleRows(ImagingFrame frame, const std::string& noData,
                                    CodecReport& report);

}  // namespace rasterkit
