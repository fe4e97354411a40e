#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Pixel formats of decoded frames. Rows are those of a `Raster`; words and floats have the byte
/// order of the processor.
///
///     BlackWhite             1 bit per pixel, 0 is black
///     1-, 4-, 8bppIndexed    index into the palette
///     4-, 8bppGray           0 is black
///     24bppBGR, 24bppRGB     three bytes in the order of the letters
///     32bppBGR, 32bppBGRA    four bytes, the fourth without meaning or straight alpha
///     32bppGrayFloat         one float
///     16bppBGR555            word  0rrrrrgg gggbbbbb
///     16bppBGR565            word  rrrrrggg gggbbbbb
///     16bppGray              unsigned word
///     16bppGrayFixedPoint    signed word
///     16bppGrayHalf          IEEE half
enum WICPixelFormat {
  GUID_WICPixelFormatBlackWhite,
  GUID_WICPixelFormat1bppIndexed,
  GUID_WICPixelFormat4bppIndexed,
  GUID_WICPixelFormat8bppIndexed,
  GUID_WICPixelFormat24bppBGR,
  GUID_WICPixelFormat24bppRGB,
  GUID_WICPixelFormat32bppBGR,
  GUID_WICPixelFormat32bppBGRA,
  GUID_WICPixelFormat32bppGrayFloat,
  GUID_WICPixelFormat4bppGray,
  GUID_WICPixelFormat8bppGray,
  GUID_WICPixelFormat16bppBGR555,
  GUID_WICPixelFormat16bppBGR565,
  GUID_WICPixelFormat16bppGray,
  GUID_WICPixelFormat16bppGrayFixedPoint,
  GUID_WICPixelFormat16bppGrayHalf
};

/// One decoded picture in one of the pixel formats above.
struct ImagingFrame {
  WICPixelFormat format = GUID_WICPixelFormat24bppBGR;
  /// A raster of 1, 4, 8, 16, 24 or 32 bits per pixel. Its own `Format()` gives only that number:
  /// all 16-bit frames are pf16bit, floats are pf32bit. The palette is valid for indexed formats
  /// only. Resolution, ICC profile and alpha mark (32bppBGRA: defined) are those of the file.
  Raster rows;
  /// True if the pixel format of the file (16-bit color, CMYK and so on) has no name above, so that
  /// the codec converted it to 32bppBGRA. Pixels with alpha 0 of such a frame keep their colors;
  /// those of a file that is 32bppBGRA itself become white.
  bool isConverted = false;
};

}  // namespace rasterkit
