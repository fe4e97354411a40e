#include <algorithm>
#include <mutex>
#include <string_view>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/icon.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/picture_registry.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

struct Registry {
  std::mutex mutex;
  std::vector<TPicture::Format> formats = {
      {"BMP", "Bitmaps", TGraphicClass::Of<TBitmap>()},
      {"WMF", "Metafiles", TGraphicClass::Of<TMetafile>()},
      {"EMF", "Enhanced Metafiles", TGraphicClass::Of<TMetafile>()},
      {"PNG", "Portable Network Graphics", TGraphicClass::Of<TPngImage>()},
      {"ICO", "Icons", TGraphicClass::Of<TIcon>()},
  };
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

}  // namespace

void TPicture::RegisterFileFormat(const std::string& extension, const std::string& description,
                                  const TGraphicClass& graphicClass) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  registry.formats.push_back({extension, description, graphicClass});
}

void TPicture::UnregisterGraphicClass(const TGraphicClass& graphicClass) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  std::erase_if(registry.formats, [&](const Format& format) {
    return format.graphicClass.type == graphicClass.type;
  });
}

std::unique_ptr<TGraphic> TPicture::CreateForExtension(const std::string& extension) {
  std::string_view wanted = extension;
  if (!wanted.empty() && wanted.front() == '.') wanted.remove_prefix(1);
  const std::vector<Format> formats = Formats();
  const auto found = std::find_if(formats.rbegin(), formats.rend(), [&](const Format& format) {
    return CompareText(format.extension, wanted) == 0;
  });
  return found == formats.rend() ? nullptr : found->graphicClass.create();
}

std::vector<TPicture::Format> TPicture::Formats() {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  return registry.formats;
}

void TPicture::LoadFromFile(const std::string& fileName) {
  const std::string extension = ExtractFileExt(fileName);
  std::unique_ptr<TGraphic> graphic = CreateForExtension(extension);
  if (!graphic) {
    throw UnsupportedError("no picture class is registered for the extension \"" + extension + "\"",
                           fileName);
  }
  graphic->LoadFromFile(fileName);
  graphic_ = std::move(graphic);
}

}  // namespace rasterkit
