#pragma once

#include <cstdint>
#include <string>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_reader.h>
#include <rasterkit/codecs/rows/plausible_size.h>

/// What a JPEG file may cost at most.
namespace rasterkit::detail {

/// Huffman coding takes at least a bit for the first coefficient of each block, in baseline and in
/// progressive files. Arithmetic coding has no bound: an encoder may drop the zero bytes at the end
/// of a scan, and a picture of one color may consist of nothing else.
inline constexpr uint64_t kBlocksPerByte = 8 * kCutSlack;

/// Memory that the codec allocates besides the coefficients; it does not grow with the height.
inline constexpr uint64_t kCodecSlack = 64 << 20;

/// Throws UnsupportedError for a lossless or hierarchical file or one of more than 8 bits per
/// sample, FormatError for one without a size.
void RequireSupportedCoding(const JpegFrame& frame);

/// Bytes of the coefficients that the library keeps for a picture of many scans.
uint64_t CoefficientBytes(const jpeg_decompress_struct& codec);

/// Blocks of all components that the file must hold.
uint64_t StoredBlocks(const jpeg_decompress_struct& codec);

/// Scans that a picture of this size may have.
int MostScans(const jpeg_decompress_struct& codec);

}  // namespace rasterkit::detail
