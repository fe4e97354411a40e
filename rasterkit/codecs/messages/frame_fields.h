#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/codecs/messages/raster_fields.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/fields.h>

/// Decoded frames in messages between processes.
namespace rasterkit::detail {

/// Everything about a frame except its rows.
struct FrameHead {
  WICPixelFormat format = GUID_WICPixelFormat24bppBGR;
  RasterHead rows;
  bool isConverted = false;
};

RASTERKIT_EXPORT void WriteFrame(FieldWriter& fields, const ImagingFrame& frame);
/// Throws FormatError as ReadRasterHead does, and if the rows have another number of bits per pixel
/// than the format of the frame.
RASTERKIT_EXPORT FrameHead ReadFrameHead(FieldReader& fields);
/// Returns a frame whose rows are to be filled; see NewRaster.
RASTERKIT_EXPORT ImagingFrame NewFrame(const FrameHead& head, uint64_t rowsBytes);

/// Warnings, which may have invalid UTF-8 from a file. The first 1,000 are written.
RASTERKIT_EXPORT void WriteWarnings(FieldWriter& fields, const std::vector<std::string>& warnings);
RASTERKIT_EXPORT std::vector<std::string> ReadWarnings(FieldReader& fields);

/// All that a decoder noticed; of each list the first 1,000 texts.
RASTERKIT_EXPORT void WriteReport(FieldWriter& fields, const CodecReport& report);
RASTERKIT_EXPORT CodecReport ReadReport(FieldReader& fields);

}  // namespace rasterkit::detail
