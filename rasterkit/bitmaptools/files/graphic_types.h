#pragma once

#include <memory>
#include <string>

#include <rasterkit/bitmaptools/files/world_file_name.h>
#include <rasterkit/graphics/graphic.h>
#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>

/// Types of graphic files and their names. No function fails: unknown input gives 0, an empty text,
/// null or 24 bits. Extensions are compared without regard to case.
namespace rasterkit {

/// Graphic type identifiers are plain integers; 5, 7 and 9 are never used.
enum : int {
  gtNone = 0,
  gtBmp = 1,
  gtWmf = 2,
  /// Also JPEG: accepted, but never returned for an extension or a graphic.
  gtJpgAlt = 3,
  gtEmf = 4,
  gtJpg = 6,
  gtPng = 8,
  gtTif = 10
};

/// Usual extension of a type, lower case with the dot: 10 gives ".tif", 5 gives "".
RASTERKIT_EXPORT std::string GetGraphicsExt(int type);

/// Type of an extension, in upper or lower case, independent of the locale. With a dot, only the
/// three characters after it count (".tiff" and ".jpgx" are known); without one, the whole text
/// does ("TIFF" is unknown). World-file extensions ("jgw") have the type of their image; PDF has
/// none.
RASTERKIT_EXPORT int GetGraphicsType(const std::string& ext);

/// Tells whether the file's extension is that of a raster picture, not of a metafile or PDF.
RASTERKIT_EXPORT bool CanLoadBitmap(const std::string& fileName);

/// Format for 1, 4, 8, 16, 24 or 32 bits per pixel; 24-bit for every other number.
RASTERKIT_EXPORT TPixelFormat GetPixelFormat(int bits);

/// Bits per pixel of a format; `defaultBits` for pfDevice, pf15bit and pfCustom.
RASTERKIT_EXPORT int PixelformatToBits(TPixelFormat pf, int defaultBits);

/// Type of a graphic; 0 for null and for classes of the host. An enhanced metafile has type 2 and a
/// plain one type 4, the opposite of what `CreateGraphicOfType` creates.
RASTERKIT_EXPORT int GetGraphicType(const TGraphic* g);

/// Creates an empty graphic of the type's class; null for an unknown type. Type 2 creates a plain
/// metafile, type 4 an enhanced one.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> CreateGraphicOfType(int type);

}  // namespace rasterkit
