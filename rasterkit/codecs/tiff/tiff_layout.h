#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/codecs/tiff/tiff_handle.h>
#include <rasterkit/codecs/tiff/tiff_lzw_style.h>

namespace rasterkit::detail {

enum class TiffNumber { unsignedInteger, signedInteger, floating };

/// How rows of the file are converted to rows of the frame.
enum class TiffRowKind {
  /// They are equal, or all bits are inverted.
  same,
  /// One of several samples of 8, 16 or 32 bits is the pixel.
  firstSample,
  /// The first sample is a float of 24 bits, which becomes one of 32 bits.
  float24,
  /// 8-bit RGB to B G R.
  rgb,
  /// Whole bytes or words of gray or RGB, with or without alpha, to B G R A.
  integers,
  /// Gray or RGB of any depth, scaled to 8 bits, to B G R A.
  scaled,
  /// Palette indexes to B G R A.
  indexed,
  /// C M Y K to B G R A.
  cmyk,
  /// L* a* b* to B G R A.
  lab,
  /// Numbers without a natural range, stretched between the least and the greatest one.
  stretched,
  /// 8-bit YCbCr in separate planes, possibly subsampled.
  ycbcrPlanes,
  /// Kinds that only libtiff can convert to RGBA.
  library,
  /// All samples with their numbers, interleaved; those of other sizes than 8, 16, 32 and 64 bits
  /// widened to the next one. `format` has no meaning.
  samples
};

/// Strips or tiles: a grid of compressed blocks.
struct TiffBlockGrid {
  bool isTiled = false;
  uint32_t width = 0, height = 0;
  uint32_t across = 1, down = 1;
  /// Bytes of one row of a block; of one plane if planes are separate.
  size_t rowBytes = 0;

  uint32_t PerPlane() const { return across * down; }
};

/// A range of bytes in the file.
struct TiffExtent {
  uint64_t offset = 0, count = 0;
};

/// The pixel layout of the first directory, checked: sizes are not zero and consistent.
struct TiffLayout {
  uint32_t width = 0, height = 0;
  /// Bits of a sample, or of each part of a complex one.
  int bits = 1;
  TiffNumber number = TiffNumber::unsignedInteger;
  bool isComplex = false;
  int compression = 1, photometric = 0;
  /// Of LZW; blocks of the other style are damaged.
  LzwStyle lzwStyle = LzwStyle::usual;
  /// Number of color samples, which are the first ones of a pixel: 1, 3 or 4.
  int channels = 1;
  /// Samples from one pixel to the next in the converted rows: all samples if they are interleaved,
  /// else the planes that are read.
  int pitch = 1;
  /// The index of the alpha channel among those.
  std::optional<int> alphaAt;
  /// True if colors are premultiplied by alpha.
  bool isAssociated = false;
  /// True if the least value is white.
  bool isInverted = false;
  /// The planes that are read; a single 0 if samples are interleaved.
  std::vector<uint16_t> planes;
  TiffBlockGrid grid;
  /// The place of each plane's rows if strips are uncompressed and follow each other without a gap;
  /// the grid then has one block per plane.
  std::vector<TiffExtent> joinedStrips;
  TiffRowKind rows = TiffRowKind::same;
  WICPixelFormat format = GUID_WICPixelFormat24bppBGR;
  bool isConverted = false;

  int Bytes() const { return bits / 8; }
  /// Bytes of a sample of TiffRowKind::samples in the rows that are delivered.
  int SampleBytes() const { return bits <= 8 ? 1 : bits <= 16 ? 2 : bits <= 32 ? 4 : 8; }
  /// True if samples of TiffRowKind::samples are delivered as they are.
  bool HasWholeSamples() const { return bits == 8 * SampleBytes(); }
};

/// Configures a handle before anything is read; the same for every handle of a file.
void PrepareTiff(TiffHandle& handle);

/// What rows are read for.
enum class TiffReading {
  /// A picture to look at, or the numbers of a grid of one band.
  frame,
  /// As the file has them: whatever a raster cannot hold exactly becomes TiffRowKind::samples.
  pixels
};

/// Throws FormatError for an invalid directory and UnsupportedError for an unsupported kind of
/// pixels. The handle must be prepared.
TiffLayout ReadTiffLayout(TiffHandle& handle, TiffReading reading = TiffReading::frame);

/// How much of a picture is held in memory at a time.
enum class TiffHolding { whole, parts };

/// Throws LimitError if the picture, or the memory for decoding it, exceeds the picture memory
/// limit, and FormatError if the file is far too small to hold such a picture. Allocates
/// nothing. For parts, a row and the blocks that hold it count as memory, not the picture.
void RequirePlausibleSize(TiffHandle& handle, const TiffLayout& layout,
                          TiffHolding holding = TiffHolding::whole);

}  // namespace rasterkit::detail
