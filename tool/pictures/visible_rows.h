#pragma once

#include <string>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/imaging_frame.h>

namespace rasterkit::tool {

/// The frame as a picture to look at, with notes of what had to be done to numbers: words are shown
/// by their whole range, other numbers between their least and greatest one. What is `noData` by
/// the file's own word is white and does not count there.
Raster VisibleRows(ImagingFrame frame, const std::string& noData, CodecReport& report);

}  // namespace rasterkit::tool
