#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/codecs/tiff/tiff_handle.h>

namespace rasterkit::detail {

enum class TiffNumber { unsignedInteger, signedInteger, floating };

/// How the rows of the file become rows of the frame.
enum class TiffRowKind {
  /// They are the frame's own, perhaps with all bits inverted.
  same,
  /// One sample of several, of 8, 16 or 32 bits, is the frame's pixel.
  firstSample,
  /// 8-bit RGB to B G R.
  rgb,
  /// Whole bytes or words of grey or RGB, with or without alpha, to B G R A.
  integers,
  /// Any depth of grey or RGB by the share of full scale, to B G R A.
  scaled,
  /// Palette indexes to B G R A.
  indexed,
  /// C M Y K to B G R A.
  cmyk,
  /// L* a* b* to B G R A.
  lab,
  /// Numbers without a natural range: stretched between the least and the greatest one.
  stretched,
  /// What only the library's own conversion to RGBA knows.
  library
};

/// Strips and tiles in one: a grid of blocks, each as the codec packed it.
struct TiffBlockGrid {
  bool isTiled = false;
  uint32_t width = 0, height = 0;
  uint32_t across = 1, down = 1;
  /// Bytes of one row of one block, of one plane where they are separate.
  size_t rowBytes = 0;

  uint32_t PerPlane() const { return across * down; }
};

/// Where bytes lie in the file.
struct TiffExtent {
  uint64_t offset = 0, count = 0;
};

/// What the first directory says about its pixels, checked: sizes are not zero and fit together.
struct TiffLayout {
  uint32_t width = 0, height = 0;
  /// Of a sample, or of each part of a complex one.
  int bits = 1;
  TiffNumber number = TiffNumber::unsignedInteger;
  bool isComplex = false;
  int compression = 1, photometric = 0;
  /// Samples of a pixel that carry its colour, the first ones: 1, 3 or 4.
  int channels = 1;
  /// Samples from one pixel to the next in the rows that are converted: all of them where they lie
  /// together, the planes that are read where they are separate.
  int pitch = 1;
  /// Which of those is the alpha channel.
  std::optional<int> alphaAt;
  /// Colours are multiplied by alpha.
  bool isAssociated = false;
  /// The least value is white.
  bool isInverted = false;
  /// The planes that are read; a single 0 where samples lie together.
  std::vector<uint16_t> planes;
  TiffBlockGrid grid;
  /// Where the rows of each of the file's planes lie when its strips are not packed and follow each
  /// other without a gap; the grid then has one block a plane.
  std::vector<TiffExtent> joinedStrips;
  TiffRowKind rows = TiffRowKind::same;
  WICPixelFormat format = GUID_WICPixelFormat24bppBGR;
  bool isConverted = false;

  int Bytes() const { return bits / 8; }
};

/// Sets what the library wants to know before anything is read; the same for every handle of a
/// file.
void PrepareTiff(TiffHandle& handle);

/// Throws FormatError for a directory that makes no sense and UnsupportedError for pixels of a kind
/// that is not read. The handle is prepared.
TiffLayout ReadTiffLayout(TiffHandle& handle);

/// Throws LimitError when the picture, or what decoding needs beside it, exceeds the picture memory
/// budget, and FormatError when the file is far too small to hold such a picture, before any memory
/// is taken.
void RequirePlausibleSize(TiffHandle& handle, const TiffLayout& layout);

}  // namespace rasterkit::detail
