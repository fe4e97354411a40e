#pragma once

#include <memory>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/codecs/rows/row_writer.h>
#include <rasterkit/raster/number_stretch.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// Reading and writing of pictures that lose nothing, for every format of the codec table.
namespace rasterkit {

/// Reads the header of a file from the stream's position on. Throws FormatError for an unknown
/// format, UnsupportedError for a format that is drawn (WMF, EMF, PDF).
RASTERKIT_EXPORT PictureHeader ReadPictureHeader(TStream& stream, PictureType type);

/// The same for programs that list many files: of a JPEG file only the front is read, so that
/// hidden pictures and a trailer are not found.
RASTERKIT_EXPORT PictureHeader ReadPictureFront(TStream& stream, PictureType type);

/// Decodes the first picture with the number types and the color model of the file.
RASTERKIT_EXPORT Pixels DecodePixels(TStream& stream, PictureType type,
                                     const FrameOptions& options = {},
                                     CodecReport* report = nullptr);

/// Begins to decode the first picture row by row. Null if the file is decoded only as a whole; its
/// pixels are then those of DecodePixels. The stream must outlive the reader. Rows and report are
/// those of DecodePixels to the byte.
RASTERKIT_EXPORT std::unique_ptr<RowReader> OpenRows(TStream& stream, PictureType type,
                                                     const FrameOptions& options = {});

/// Converts to a picture to look at: 8-bit gray or true color, CMYK and L*a*b* through the profile
/// or the usual formulas, numbers of more than 8 bits by the stretch. What this loses is added to
/// `changes`, and which numbers are shown black and white.
///
/// A gray is the nearest whole number to 255 * (number - black) / (white - black), computed without
/// rounding on the way; halves are rounded up, and numbers beyond are cut off.
RASTERKIT_EXPORT Raster VisiblePixels(Pixels pixels, const std::string& noData, Changes& changes,
                                      const NumberStretch& stretch = {});

/// The stretch for parts or smaller copies of the samples that shows each number as in the whole:
/// `fixed`, with the range that the stretch finds; the stretch itself where there is none to find.
RASTERKIT_EXPORT NumberStretch SettledStretch(const Samples& samples, const std::string& noData,
                                              const NumberStretch& stretch);

/// True if the format can be written, and if it can take compressed pixels from a file of its kind.
RASTERKIT_EXPORT bool CanWrite(PictureType type);
RASTERKIT_EXPORT bool CanCopy(PictureType type);

/// Writes a file of that format at the stream's position. Pixels that it cannot hold must have been
/// converted: throws UnsupportedError.
RASTERKIT_EXPORT WrittenPicture WritePicture(PictureType type, const Pixels& pixels,
                                             const PictureWriting& writing, TStream& stream);

/// Begins to write a file of that format row by row, for pixels of the kind of `like`, whose rows
/// have no meaning. Null if such pixels are encoded only as a whole. The file has the bytes that
/// WritePicture gives. The stream must outlive the writer.
RASTERKIT_EXPORT std::unique_ptr<RowWriter> OpenWriter(PictureType type, const Pixels& like,
                                                       WrittenSize size,
                                                       const PictureWriting& writing,
                                                       TStream& stream);

/// Writes the compressed pixels of `source` byte for byte with other metadata, or moved (JPEG
/// alone; throws UnsupportedError for others).
RASTERKIT_EXPORT WrittenPicture CopyPicture(PictureType type, TStream& source,
                                            const PictureWriting& writing, TStream& stream);

}  // namespace rasterkit
