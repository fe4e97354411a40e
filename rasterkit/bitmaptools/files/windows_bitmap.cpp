#include <cmath>
#include <utility>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/name_errors.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

/// Angles up to this one, in degrees, do not turn.
constexpr float kNoTurn = 0.1f;

/// Loads the picture into the class of its type; null if there is none. A photo adds its own
/// rotation to the angle.
std::unique_ptr<TGraphic> LoadByType(int type, const std::string& fileName, float& angle) {
  if (type == gtTif) return LoadViaWic(fileName);
  if (type == gtNone || type == gtJpgAlt) return nullptr;
  // A metafile is not read and gives an empty bitmap.
  if (type == gtWmf || type == gtEmf) return std::make_unique<TBitmap>();
  std::unique_ptr<TGraphic> graphic = CreateGraphicOfType(type);
  graphic->LoadFromFile(fileName);
  if (type == gtJpg) {
    const auto& photo = dynamic_cast<const TJPEGImage&>(*graphic);
    int rotation = 0;
    if (detail::RotationOfPhoto(photo.CompressedData(), fileName, rotation)) {
      angle = static_cast<float>(rotation) + angle;
    }
  }
  return graphic;
}

std::unique_ptr<TBitmap> IntoBitmap(std::unique_ptr<TGraphic> graphic) {
  if (GetGraphicType(graphic.get()) == gtBmp) {
    return std::unique_ptr<TBitmap>(static_cast<TBitmap*>(graphic.release()));
  }
  if (auto* photo = dynamic_cast<TJPEGImage*>(graphic.get())) {
    return std::make_unique<TBitmap>(photo->TakeBitmap());
  }
  auto bitmap = std::make_unique<TBitmap>();
  bitmap->Assign(graphic.get());
  return bitmap;
}

/// Hosts draw 8-bit bitmaps with white as paper, and support palettes of 16 or 256 colors.
void CleanPalette(TBitmap& bitmap) {
  if (bitmap.PixelFormat() != pf8bit) return;
  if (bitmap.Transparent() && bitmap.TransparentColor() != clWhite) bitmap.SetTransparent(false);
  std::unique_ptr<TColorTable> entries;
  const int32_t count = GetPaletteColors(bitmap.Palette(), entries);
  if (count >= 17 && count < 256) ChangePalColors(bitmap, *entries, count);
}

/// Saves the bitmap; one without pixels as the header of 0 x 0 pixels, so that the caller has a
/// file to load and delete in every case.
void SaveAsBmp(TBitmap& bitmap, const std::string& fileName) {
  if (!bitmap.Empty()) return bitmap.SaveToFile(fileName);
  detail::NameErrors(fileName, [&] {
    AtomicFile file(fileName);
    file.Write(detail::BmpHead(bitmap.Content(), BmpProfile::omit));
    file.Commit();
  });
}

}  // namespace

bool LoadWindowsBitmap(const std::string& fileName, float angle, std::unique_ptr<TBitmap>& bitmap) {
  bitmap.reset();
  if (!FileExists(fileName)) return false;
  const int type = GetGraphicsType(ExtractFileExt(fileName));
  std::unique_ptr<TGraphic> graphic = LoadByType(type, fileName, angle);
  if (!graphic) return false;
  std::unique_ptr<TBitmap> loaded = IntoBitmap(std::move(graphic));
  if (type != gtBmp) CleanPalette(*loaded);
  if (std::fabs(angle) > kNoTurn) RotateBitmap(angle, loaded, clWhite, 0, nullptr);
  bitmap = std::move(loaded);
  return true;
}

bool GetWindowsBitmap(const std::string& fileName, float angle, std::string& bmpFileName,
                      bool& isTemporary) {
  const bool isBmp = CompareText(ExtractFileExt(fileName), ".bmp") == 0;
  if (isBmp && std::fabs(angle) < kNoTurn) {
    isTemporary = false;
    bmpFileName = fileName;
    return true;
  }
  std::unique_ptr<TBitmap> bitmap;
  if (!LoadWindowsBitmap(fileName, angle, bitmap)) return false;
  std::string name = ExtractFilePath(fileName) + "tmp" + std::to_string(MinuteOfDay()) + ".bmp";
  SaveAsBmp(*bitmap, name);
  isTemporary = true;
  bmpFileName = std::move(name);
  return true;
}

}  // namespace rasterkit
