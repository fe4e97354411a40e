#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// JPEG files with everything that they state, for pictures that lose nothing.
namespace rasterkit {

/// Reads all that is no pixel, in front of the pixels and behind them. Throws FormatError if the
/// headers are damaged; damaged metadata gives a warning in the header.
RASTERKIT_EXPORT PictureHeader ReadJpegHeader(std::span<const uint8_t> file);

/// The same without what is between and behind the scans: hidden pictures and trailer are not
/// looked for, and no more of the file is read than its front.
RASTERKIT_EXPORT PictureHeader ReadJpegFront(TStream& stream);

/// The header without hidden pictures and trailer, which are not looked for. No more of a file of
/// one scan is read than its front.
RASTERKIT_EXPORT PictureHeader ReadOwnJpegHeader(TStream& stream);

/// Decodes the pixels as the file has them (see PictureHeader::layout): gray and colors as
/// DecodeJpeg does, CMYK and YCCK as samples of inks, whose layout has no profile. Missing scans
/// are damage. Throws as DecodeJpeg does.
RASTERKIT_EXPORT Pixels DecodeJpegPixels(std::span<const uint8_t> file,
                                         CodecReport* report = nullptr);

/// The same for a smaller picture: each pixel stands for `denominator` pixels of the file in both
/// directions (1, 2, 4 or 8), the last ones for fewer. Reads from the stream's position on; no more
/// than a part of a file of one scan is held.
RASTERKIT_EXPORT Pixels DecodeSmallerJpegPixels(TStream& stream, int denominator,
                                                CodecReport* report = nullptr);

/// The form of a picture after an odd number of quarter turns: tables transposed, sampling factors
/// exchanged.
RASTERKIT_EXPORT JpegForm Transposed(const JpegForm& form);

/// Writes a file at the stream's position.
RASTERKIT_EXPORT WrittenPicture WriteJpeg(const Pixels& pixels, const PictureWriting& writing,
                                          TStream& stream);

/// The largest part of `move` whose pixels can be moved without being decoded: `move` itself if
/// that is exact; a smaller one if the edges that become the left or top one do not lie on the
/// borders of blocks. Nothing if no block is left, for a part outside of the picture, or for a form
/// that cannot be moved (arithmetic coding). `width` and `height` are the sides of the stored
/// picture.
RASTERKIT_EXPORT std::optional<PictureMove> MovableJpegPart(const JpegForm& form, int width,
                                                            int height, const PictureMove& move);

/// Writes the compressed pixels of `file` byte for byte, with the metadata of `writing`. With
/// `writing.move`, blocks are turned and left out instead, and the file has the tables, sampling,
/// scans and restart interval of the source; previews in the file header and what follows the end
/// of the picture are skipped. Before the first byte is written, a move throws RangeError if it is
/// not exact (see MovableJpegPart), FormatError if the stream is damaged or cut off or scans are
/// missing, UnsupportedError for arithmetic coding, 12 bits and tables that change between scans,
/// LimitError if the coefficients of source and result exceed the picture memory limit. A caller
/// can then decode the file and encode it again.
RASTERKIT_EXPORT WrittenPicture CopyJpeg(std::span<const uint8_t> file,
                                         const PictureWriting& writing, TStream& stream);

}  // namespace rasterkit
