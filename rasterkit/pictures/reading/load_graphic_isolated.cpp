#include <utility>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/name_errors.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/pictures/reading/load_graphic_isolated.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/tifftobmp/frame_bitmap.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {
namespace {

/// The type of file that a class of graphics reads itself.
bool IsOfClass(PictureType type, int graphicType) {
  switch (graphicType) {
    case gtBmp:
      return type == PictureType::bmp;
    case gtJpg:
      return type == PictureType::jpeg;
    case gtPng:
      return type == PictureType::png;
    case gtWmf:
    case gtEmf:
      return type == PictureType::wmf || type == PictureType::emf;
    default:
      return false;
  }
}

template <class T>
std::unique_ptr<TGraphic> CopyInto(const TBitmap& bitmap) {
  auto graphic = std::make_unique<T>();
  graphic->Assign(&bitmap);
  return graphic;
}

template <class T>
std::unique_ptr<TGraphic> MoveInto(TBitmap&& bitmap) {
  auto graphic = std::make_unique<T>();
  static_cast<TBitmap&>(*graphic) = std::move(bitmap);
  return graphic;
}

std::unique_ptr<TGraphic> IntoClass(TBitmap&& bitmap, int graphicType) {
  switch (graphicType) {
    case gtJpg:
      return CopyInto<TJPEGImage>(bitmap);
    case gtPng:
    case gtWmf:
    case gtEmf:
      return CopyInto<TPngImage>(bitmap);
    default:
      return MoveInto<TBitmap>(std::move(bitmap));
  }
}

/// The class of the extension can read the file.
std::unique_ptr<TGraphic> OfOwnClass(LoadedFrame& picture, int graphicType) {
  auto graphic = IntoClass(TBitmap(std::move(picture.frame.rows)), graphicType);
  graphic->SetModified(false);
  if (graphicType == gtJpg && picture.photo.rotation.value_or(0) != 0) {
    RotateGraphic(static_cast<float>(*picture.photo.rotation), graphic, clBlack);
  }
  return graphic;
}

/// The imaging codec reads the file.
std::unique_ptr<TGraphic> OfContent(LoadedFrame& picture, int graphicType) {
  auto frame = detail::BitmapOfFrame(std::move(picture.frame), detail::ReadMode::picture);
  if (graphicType == gtTif) return MoveInto<TWICBitmap>(std::move(*frame.bitmap));
  const bool isMetafileName = graphicType == gtWmf || graphicType == gtEmf;
  auto graphic = IntoClass(std::move(*frame.bitmap), isMetafileName ? gtNone : graphicType);
  graphic->SetModified(true);
  return graphic;
}

}  // namespace

std::unique_ptr<TGraphic> LoadGraphicIsolated(const std::string& fileName) {
  const int graphicType = GetGraphicsType(ExtractFileExt(fileName));
  PictureReading reading;
  reading.isolation = Isolation::process;
  LoadedFrame picture;
  ReadPicture(picture, fileName, reading);
  std::unique_ptr<TGraphic> graphic;
  detail::NameErrors(fileName, [&] {
    const bool isOwn = IsOfClass(picture.type, graphicType);
    const bool hasRotation = picture.type != PictureType::jpeg || picture.photo.rotation;
    if (picture.metafile && !isOwn) throw FormatError("a metafile has another extension");
    graphic =
        isOwn && hasRotation ? OfOwnClass(picture, graphicType) : OfContent(picture, graphicType);
  });
  return graphic;
}

}  // namespace rasterkit
