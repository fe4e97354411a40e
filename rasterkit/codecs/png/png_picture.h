#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/codecs/rows/row_writer.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// PNG files with everything that they state, for pictures that lose nothing.
namespace rasterkit {

/// Reads all that is no pixel, in front of the pixels and behind them. Throws FormatError if the
/// headers are damaged; damaged metadata gives a warning in the header.
RASTERKIT_EXPORT PictureHeader ReadPngHeader(std::span<const uint8_t> file);

/// The same for a file in a stream, from its position on. The pixels are skipped.
RASTERKIT_EXPORT PictureHeader ReadPngStreamHeader(TStream& stream);

/// Decodes the pixels as the file has them (see PictureHeader::layout): up to 8 bits as DecodePng
/// does, except that a palette with several opacities becomes true color with alpha; 16 bits as
/// samples. Throws as DecodePng does.
RASTERKIT_EXPORT Pixels DecodePngPixels(std::span<const uint8_t> file,
                                        CodecReport* report = nullptr);

/// The same for a file in a stream, from its position on.
RASTERKIT_EXPORT Pixels DecodePngStream(TStream& stream, const FrameOptions& options,
                                        CodecReport* report = nullptr);

/// Begins to decode the pixels row by row, from top to bottom. Null for an interlaced picture.
/// Throws as DecodePngPixels does.
RASTERKIT_EXPORT std::unique_ptr<RowReader> OpenPngRows(TStream& stream,
                                                        const FrameOptions& options = {});

/// Writes a file at the stream's position.
RASTERKIT_EXPORT WrittenPicture WritePng(const Pixels& pixels, const PictureWriting& writing,
                                         TStream& stream);

/// Begins to write a file row by row, with the bytes of WritePng. Null for an interlaced file, and
/// where the form of the file depends on the pixels.
RASTERKIT_EXPORT std::unique_ptr<RowWriter> OpenPngWriter(const Pixels& like, WrittenSize size,
                                                          const PictureWriting& writing,
                                                          TStream& stream);

/// Writes the compressed pixels of `file` byte for byte, with the metadata of `writing`.
RASTERKIT_EXPORT WrittenPicture CopyPng(std::span<const uint8_t> file,
                                        const PictureWriting& writing, TStream& stream);

}  // namespace rasterkit
