#include <rasterkit/bitmaptools/files/graphic_formats.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {

using detail::GraphicFormat;
using detail::kGraphicFormats;
using detail::UsualExtension;
using detail::WithDot;

namespace {

std::unique_ptr<TGraphic> MakeMetafile(bool enhanced) {
  auto metafile = std::make_unique<TMetafile>();
  metafile->SetEnhanced(enhanced);
  return metafile;
}

template <class T>
bool Is(const TGraphic* g) {
  return dynamic_cast<const T*>(g) != nullptr;
}

}  // namespace

std::string GetGraphicsExt(int type) {
  if (type == gtJpgAlt) type = gtJpg;
  for (const GraphicFormat& format : kGraphicFormats) {
    if (format.type == type) return WithDot(UsualExtension(format));
  }
  return "";
}

int GetGraphicsType(const std::string& ext) {
  // A locale may have other capitals: a Turkish one makes "tif" a name that no format has.
  std::string name = UpperCase(ext);
  if (name.starts_with('.')) name = Utf16Substring(name, 1, 3);
  if (name.empty()) return gtNone;
  for (const GraphicFormat& format : kGraphicFormats) {
    if (name == UpperCase(UsualExtension(format)) || name == format.worldExtension) {
      return format.type;
    }
  }
  return gtNone;
}

bool CanLoadBitmap(const std::string& fileName) {
  const int type = GetGraphicsType(ExtractFileExt(fileName));
  return type != gtNone && type != gtWmf && type != gtEmf;
}

TPixelFormat GetPixelFormat(int bits) {
  switch (bits) {
    case 1:
      return pf1bit;
    case 4:
      return pf4bit;
    case 8:
      return pf8bit;
    case 16:
      return pf16bit;
    case 32:
      return pf32bit;
    default:
      return pf24bit;
  }
}

int PixelformatToBits(TPixelFormat pf, int defaultBits) {
  switch (pf) {
    case pf1bit:
      return 1;
    case pf4bit:
      return 4;
    case pf8bit:
      return 8;
    case pf16bit:
      return 16;
    case pf24bit:
      return 24;
    case pf32bit:
      return 32;
    default:
      return defaultBits;
  }
}

int GetGraphicType(const TGraphic* g) {
  // The derived class before its base.
  if (Is<TWICBitmap>(g)) return gtTif;
  if (Is<TJPEGImage>(g)) return gtJpg;
  if (Is<TPngImage>(g)) return gtPng;
  if (Is<TBitmap>(g)) return gtBmp;
  const auto* metafile = dynamic_cast<const TMetafile*>(g);
  if (metafile == nullptr) return gtNone;
  return metafile->Enhanced() ? gtWmf : gtEmf;
}

std::unique_ptr<TGraphic> CreateGraphicOfType(int type) {
  switch (type) {
    case gtBmp:
      return std::make_unique<TBitmap>();
    case gtWmf:
      return MakeMetafile(false);
    case gtJpgAlt:
    case gtJpg:
      return std::make_unique<TJPEGImage>();
    case gtEmf:
      return MakeMetafile(true);
    case gtPng:
      return std::make_unique<TPngImage>();
    case gtTif:
      return std::make_unique<TWICBitmap>();
    default:
      return nullptr;
  }
}

}  // namespace rasterkit
