#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/codecs/rows/row_writer.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// TIFF files with everything that they state, for pictures that lose nothing.
namespace rasterkit {

/// Reads all that is no pixel, of the first page and of what belongs to it. Throws FormatError if
/// the first directory cannot be read.
RASTERKIT_EXPORT PictureHeader ReadTiffHeader(TStream& stream);

/// Decodes the first page as the file has it (see PictureHeader::layout): colors of 1 to 8 bits as
/// a raster; more bits, other numbers, CMYK, L*a*b*, associated alpha, extra bands, "least is
/// white" grids of 16 bits as samples, unchanged. Throws as DecodeTiff does.
RASTERKIT_EXPORT Pixels DecodeTiffPixels(TStream& stream, const FrameOptions& options = {},
                                         CodecReport* report = nullptr);

/// Begins to read the first page row by row; see OpenRows. Parts of plain pages cost their bytes,
/// those of tiled pages the tiles that hold them. Null for pages that are read only as a whole: old
/// JPEG, YCbCr without JPEG, logarithmic colors.
RASTERKIT_EXPORT std::unique_ptr<RowReader> OpenTiffRows(TStream& stream,
                                                         const FrameOptions& options = {});

/// The usual form of a file with that compression, little-endian, in strips, with a predictor where
/// it helps. Its photometric value is -1: whatever the pixels need.
RASTERKIT_EXPORT TiffForm FormFor(TiffCompression compression, const PixelLayout& layout);

/// Writes a file of one page at the stream's position. A form that does not fit becomes the nearest
/// one, with a note. Throws UnsupportedError for rasters of 15 and 16 bits and for layouts that a
/// TIFF file cannot hold.
RASTERKIT_EXPORT WrittenPicture WriteTiff(const Pixels& pixels, const PictureWriting& writing,
                                          TStream& stream);

/// Begins to write such a file row by row; see OpenWriter. Null for a form whose samples are in
/// planes.
RASTERKIT_EXPORT std::unique_ptr<RowWriter> OpenTiffWriter(const Pixels& like, WrittenSize size,
                                                           const PictureWriting& writing,
                                                           TStream& stream);

/// A smaller copy (bit 1) or a mask (bit 4) of a page, as tag 254 states it.
struct TiffExtraPage {
  Pixels pixels;
  TiffForm form;
  uint32_t subfileType = 1;
};

/// Writes the page, then its smaller copies and masks.
RASTERKIT_EXPORT WrittenPicture WriteTiff(const Pixels& pixels, const PictureWriting& writing,
                                          std::span<const TiffExtraPage> extraPages,
                                          TStream& stream);

/// A smaller copy or a mask of the first page, from its tags.
struct TiffExtraPageHeader {
  int width = 0, height = 0;
  PixelLayout layout;
  TiffForm form;
  uint32_t subfileType = 1;
};

/// Lists the smaller copies and masks of the first page that can be read, those after it first,
/// then those of tag 330.
RASTERKIT_EXPORT std::vector<TiffExtraPageHeader> ReadTiffExtraPages(TStream& stream);

/// Decodes the smaller copy or mask with that index in the list of ReadTiffExtraPages. Throws
/// RangeError for another index.
RASTERKIT_EXPORT Pixels DecodeTiffExtraPage(TStream& stream, size_t index,
                                            const FrameOptions& options = {},
                                            CodecReport* report = nullptr);

/// Begins to read the smaller copy or mask with that index row by row, as OpenTiffRows does.
RASTERKIT_EXPORT std::unique_ptr<RowReader> OpenTiffExtraPageRows(TStream& stream, size_t index,
                                                                  const FrameOptions& options = {});

/// The index of the smallest smaller copy of the first page with the same kind of pixels that is at
/// least `width` x `height`; nothing if there is none. Copies of another shape do not count: each
/// side may differ from that of the page, reduced to the same size, by one pixel.
RASTERKIT_EXPORT std::optional<size_t> FindTiffSmallerCopy(TStream& stream, int width, int height);

/// Writes the first page of `source` with its encoded strips and tiles byte for byte, with the
/// metadata and position of `writing`.
RASTERKIT_EXPORT WrittenPicture CopyTiff(TStream& source, const PictureWriting& writing,
                                         TStream& stream);

}  // namespace rasterkit
