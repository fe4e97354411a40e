#include <exception>
#include <utility>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {
namespace {

/// Opens the file once: the EXIF data are read from the bytes that the photo keeps.
void LoadUpright(const std::string& fileName, int type, std::unique_ptr<TGraphic>& graphic) {
  graphic->LoadFromFile(fileName);
  if (type != gtJpg) return;
  const auto& photo = dynamic_cast<const TJPEGImage&>(*graphic);
  int rotation = 0;
  if (detail::RotationOfPhoto(photo.CompressedData(), fileName, rotation)) {
    RotateGraphic(static_cast<float>(rotation), graphic, clBlack);
  }
}

/// Copies a picture into a graphic of another class. Raster classes are assigned directly. A
/// metafile, or no graphic, becomes a bitmap first, even if the target is a metafile too.
void AssignPicture(TGraphic& target, const TGraphic* source) {
  if (source != nullptr && dynamic_cast<const TMetafile*>(source) == nullptr) {
    target.Assign(source);
    return;
  }
  TBitmap bitmap;
  bitmap.Assign(source);
  target.Assign(&bitmap);
}

/// Returns the graphic itself if it is a plain bitmap, else its picture as a new one, which is
/// moved out if the class allows that. Frees the graphic before the caller needs more memory.
std::unique_ptr<TBitmap> TakeBitmap(int type, std::unique_ptr<TGraphic>& graphic) {
  if (type == gtBmp) return std::unique_ptr<TBitmap>(static_cast<TBitmap*>(graphic.release()));
  auto bitmap = std::make_unique<TBitmap>();
  if (type == gtTif) {
    *bitmap = std::move(static_cast<TBitmap&>(*graphic));
  } else if (type == gtJpg) {
    *bitmap = dynamic_cast<TJPEGImage&>(*graphic).TakeBitmap();
  } else {
    bitmap->Assign(graphic.get());
  }
  graphic.reset();
  return bitmap;
}

/// Makes the rotated bitmap a graphic of the type it had before.
std::unique_ptr<TGraphic> IntoType(int type, TBitmap& bitmap) {
  if (type == gtTif) {
    auto tiff = std::make_unique<TWICBitmap>();
    static_cast<TBitmap&>(*tiff) = std::move(bitmap);
    tiff->SetModified(true);
    return tiff;
  }
  if (type == gtJpg) {
    auto jpeg = std::make_unique<TJPEGImage>();
    jpeg->AssignMoved(std::move(bitmap));
    return jpeg;
  }
  const bool wasMetafile = type == gtWmf || type == gtEmf;
  std::unique_ptr<TGraphic> graphic =
      wasMetafile ? std::make_unique<TPngImage>() : CreateGraphicOfType(type);
  graphic->Assign(&bitmap);
  return graphic;
}

}  // namespace

std::unique_ptr<TGraphic> LoadGraphic(const std::string& fileName) {
  if (!FileExists(fileName)) return nullptr;
  const int type = GetGraphicsType(ExtractFileExt(fileName));
  std::unique_ptr<TGraphic> graphic = CreateGraphicOfType(type);
  if (!graphic) return nullptr;
  try {
    LoadUpright(fileName, type, graphic);
    return graphic;
  } catch (const std::exception&) {
    graphic.reset();
  }
  try {
    return LoadViaWic(fileName);
  } catch (const std::exception&) {
    return nullptr;
  }
}

void SaveGraphic(const std::string& fileName, std::unique_ptr<TGraphic>& graphic) {
  const int target = GetGraphicsType(ExtractFileExt(fileName));
  if (graphic && GetGraphicType(graphic.get()) == target) {
    graphic->SaveToFile(fileName);
    return;
  }
  std::unique_ptr<TGraphic> converted = CreateGraphicOfType(target);
  if (!converted) {
    throw UnsupportedError("no kind of graphic file has this extension", fileName);
  }
  try {
    AssignPicture(*converted, graphic.get());
  } catch (Error& error) {
    error.AttachFile(fileName);
    throw;
  }
  converted->SaveToFile(fileName);
  graphic = std::move(converted);
}

std::unique_ptr<TGraphic> CopyGraphic(const TGraphic* graphic) {
  std::unique_ptr<TGraphic> copy = CreateGraphicOfType(GetGraphicType(graphic));
  if (copy) copy->Assign(graphic);
  return copy;
}

void RotateGraphic(float angle, std::unique_ptr<TGraphic>& graphic, TColor backColor) {
  const int type = GetGraphicType(graphic.get());
  if (type == gtNone) throw UnsupportedError("there is no graphic of a known kind to rotate");
  std::unique_ptr<TBitmap> bitmap = TakeBitmap(type, graphic);
  try {
    RotateBitmap(angle, bitmap, backColor, 0, nullptr);
    if (type != gtBmp) {
      graphic = IntoType(type, *bitmap);
      return;
    }
  } catch (...) {
    graphic = std::move(bitmap);
    throw;
  }
  graphic = std::move(bitmap);
}

}  // namespace rasterkit
