#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_metadata.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/codecs/rows/row_writer.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Options of all encoders. Each one reads the fields that its format has a use for.
struct EncodeOptions {
  /// Quality of a JPEG file, 1 to 100.
  int quality = 90;
  TiffWriteOptions tiff;
};

/// A format of picture files. A function that the format lacks is null.
///
/// Icons have no row: their signature is too weak to recognize a file by its content, so only
/// TIcon reads them.
struct Codec {
  PictureType type = PictureType::unknown;
  /// The name that PictureTypeName gives.
  const char* name = "";
  /// File extensions in lower case without the dot, the usual one first; unused places are empty.
  std::array<std::string_view, 5> extensions;
  /// True if the first bytes of a file are those of this format. kSignatureBytes are enough.
  bool (*matches)(std::span<const uint8_t> bytes) = nullptr;

  /// Decoders: a format has at most one of them. Compressed formats decode a whole file from
  /// memory, bitmap files go from the stream straight into the raster, and TIFF files give a frame
  /// that can also be a grid of numbers.
  Raster (*decodeBytes)(std::span<const uint8_t> file, CodecReport* report) = nullptr;
  Raster (*decodeStream)(TStream& stream, CodecReport* report) = nullptr;
  ImagingFrame (*decodeFrame)(TStream& stream, const FrameOptions& options,
                              CodecReport* report) = nullptr;

  /// Lists what the file holds besides its pixels. TIFF files have ReadTiffFacts for that.
  void (*readMetadata)(std::span<const uint8_t> file, PictureMetadata& metadata) = nullptr;

  /// Writes the raster at the stream's position. Converts pixel formats that the format lacks.
  void (*encode)(const Raster& raster, TStream& stream, const EncodeOptions& options) = nullptr;
  /// What encode keeps.
  bool keepsAlpha = false, keepsTransparentColor = false;

  /// Reading and writing of all that a file states, see picture_io.h. The streams have a size and
  /// start at the file.
  PictureHeader (*readHeader)(TStream& stream) = nullptr;
  /// Null: reading the header is quick.
  PictureHeader (*readFront)(TStream& stream) = nullptr;
  /// Null: the decoder above gives all that the file has.
  Pixels (*decodePixels)(TStream& stream, const FrameOptions& options,
                         CodecReport* report) = nullptr;
  WrittenPicture (*write)(const Pixels& pixels, const PictureWriting& writing,
                          TStream& stream) = nullptr;
  WrittenPicture (*copy)(TStream& source, const PictureWriting& writing, TStream& stream) = nullptr;
  /// The same by rows, see picture_io.h. The result is null for files and pixels that the format
  /// handles only as a whole.
  std::unique_ptr<RowReader> (*openRows)(TStream& stream, const FrameOptions& options) = nullptr;
  std::unique_ptr<RowWriter> (*openWriter)(const Pixels& like, WrittenSize size,
                                           const PictureWriting& writing,
                                           TStream& stream) = nullptr;

  bool IsDecoded() const {
    return decodeBytes != nullptr || decodeStream != nullptr || decodeFrame != nullptr;
  }
  /// True for a format that `Picture` reads and the exported routines do not know: to them its
  /// files are data of an unknown type.
  bool IsForPicturesOnly() const { return !IsDecoded() && readHeader != nullptr; }
};

/// Every signature lies within this many bytes from the start of the file.
inline constexpr size_t kSignatureBytes = 1024;

/// All formats, in the order in which their signatures are tried.
RASTERKIT_EXPORT std::span<const Codec> CodecTable();

/// The row of a type that the exported routines know; null for PictureType::unknown and for formats
/// that only `Picture` reads.
RASTERKIT_EXPORT const Codec* FindFrameCodec(PictureType type);

/// The row of a type; null for PictureType::unknown.
RASTERKIT_EXPORT const Codec* FindCodec(PictureType type);

/// The row of a file extension, with or without the dot, in either case; null if no format has it.
RASTERKIT_EXPORT const Codec* FindCodecOfExtension(std::string_view extension);

}  // namespace rasterkit
