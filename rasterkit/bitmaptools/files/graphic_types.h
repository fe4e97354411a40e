#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>

/// The kinds of graphic files and their names. Nothing here fails: unknown input gives 0, an empty
/// text, null or 24 bits. Extensions are compared without regard to case.
namespace rasterkit {

/// Graphic type identifiers are plain integers; 5, 7 and 9 are never used.
enum : int {
  gtNone = 0,
  gtBmp = 1,
  gtWmf = 2,
  /// JPEG as well: accepted, but never given for an extension or a graphic.
  gtJpgAlt = 3,
  gtEmf = 4,
  gtJpg = 6,
  gtPng = 8,
  gtTif = 10
};

/// The usual extension of a type, lower case with the dot: 10 gives ".tif", 5 gives "".
RASTERKIT_EXPORT std::string GetGraphicsExt(int type);

/// The type that belongs to an extension. With a dot, only the three characters after it count
/// (".tiff" and ".jpgx" are known); without one, the whole text does ("TIFF" is unknown).
/// World-file extensions ("jgw") have the type of their image; PDF has none.
RASTERKIT_EXPORT int GetGraphicsType(const std::string& ext);

/// The extension of the world file beside an image, upper case with the dot: "a.tiff" and ".tif"
/// give ".TFW". Empty for kinds without one. `name` is a file name, or an extension with its dot.
RASTERKIT_EXPORT std::string GetWorldFileExt(const std::string& name);

/// True when the file's extension is that of a raster picture: no metafile, no PDF.
RASTERKIT_EXPORT bool CanLoadBitmap(const std::string& fileName);

/// The format for 1, 4, 8, 16, 24 or 32 bits a pixel; 24-bit for every other number.
RASTERKIT_EXPORT TPixelFormat GetPixelFormat(int bits);

/// The bits of a format; `defaultBits` for pfDevice, pf15bit and pfCustom.
RASTERKIT_EXPORT int PixelformatToBits(TPixelFormat pf, int defaultBits);

/// The type of a graphic, 0 for none and for classes of the host's own. An enhanced metafile is a 2
/// and a plain one a 4, the other way round than `CreateGraphicOfType` makes them.
RASTERKIT_EXPORT int GetGraphicType(const TGraphic* g);

/// An empty graphic of the type's class, or null for an unknown type. Type 2 is made as a plain
/// metafile, 4 as an enhanced one.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> CreateGraphicOfType(int type);

}  // namespace rasterkit
