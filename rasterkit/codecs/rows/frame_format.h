#pragma once

#include <rasterkit/codecs/rows/imaging_frame.h>

namespace rasterkit::detail {

/// The format of a raster that holds such a frame: it has as many bits per pixel.
constexpr TPixelFormat RasterFormatOf(WICPixelFormat format) {
  switch (format) {
    case GUID_WICPixelFormatBlackWhite:
    case GUID_WICPixelFormat1bppIndexed:
      return pf1bit;
    case GUID_WICPixelFormat4bppIndexed:
    case GUID_WICPixelFormat4bppGray:
      return pf4bit;
    case GUID_WICPixelFormat8bppIndexed:
    case GUID_WICPixelFormat8bppGray:
      return pf8bit;
    case GUID_WICPixelFormat16bppBGR555:
    case GUID_WICPixelFormat16bppBGR565:
    case GUID_WICPixelFormat16bppGray:
    case GUID_WICPixelFormat16bppGrayFixedPoint:
    case GUID_WICPixelFormat16bppGrayHalf:
      return pf16bit;
    case GUID_WICPixelFormat24bppBGR:
    case GUID_WICPixelFormat24bppRGB:
      return pf24bit;
    default:
      return pf32bit;
  }
}

constexpr int PixelBits(WICPixelFormat format) {
  return StoredBitsPerPixel(RasterFormatOf(format));
}

/// The format of a frame with the colors of a raster.
inline WICPixelFormat FrameFormatOf(const Raster& raster) {
  switch (raster.Format()) {
    case pf1bit:
      return GUID_WICPixelFormat1bppIndexed;
    case pf4bit:
      return GUID_WICPixelFormat4bppIndexed;
    case pf8bit:
      return GUID_WICPixelFormat8bppIndexed;
    case pf15bit:
      return GUID_WICPixelFormat16bppBGR555;
    case pf16bit:
      return GUID_WICPixelFormat16bppBGR565;
    case pf24bit:
      return GUID_WICPixelFormat24bppBGR;
    default:
      return raster.alphaFormat == afDefined ? GUID_WICPixelFormat32bppBGRA
                                             : GUID_WICPixelFormat32bppBGR;
  }
}

}  // namespace rasterkit::detail
