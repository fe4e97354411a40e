#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Pixel formats of decoded frames, by their established names. Rows are those of a `Raster`; words
/// and floats are as the processor has them.
///
///     BlackWhite             1 bit a pixel, 0 is black
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

/// One decoded picture in a pixel format of the codec's own, with its rows as they came out.
struct ImagingFrame {
  WICPixelFormat format = GUID_WICPixelFormat24bppBGR;
  /// A raster of 1, 4, 8, 16, 24 or 32 bits a pixel; its own `Format()` says no more than that
  /// (16-bit frames of every kind are pf16bit, floats pf32bit). The palette counts for indexed
  /// formats only. Resolution, ICC profile and alpha mark (32bppBGRA: defined) come along.
  Raster rows;
  /// The file's own pixel format (16-bit colour, CMYK ...) has no name above, and the codec made
  /// 32bppBGRA of it. The table of bitmaps knows no alpha mark for such frames: their pixels of
  /// alpha 0 keep their colours, those of a frame that is 32bppBGRA by itself become white.
  bool isConverted = false;
};

}  // namespace rasterkit
