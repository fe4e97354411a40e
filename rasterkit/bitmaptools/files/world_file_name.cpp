#include <rasterkit/bitmaptools/files/graphic_formats.h>
#include <rasterkit/bitmaptools/files/world_file_name.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {

using detail::GraphicFormat;
using detail::kGraphicFormats;
using detail::UsualExtension;
using detail::WithDot;

std::string GetWorldFileExt(const std::string& name) {
  // UpperCase ignores the locale: a Turkish one would turn ".tif" into something that is no
  // extension.
  std::string ext = UpperCase(name.starts_with('.') ? name : ExtractFileExt(name));
  if (ext == ".TIFF") ext = ".TIF";
  for (const GraphicFormat& format : kGraphicFormats) {
    if (ext == UpperCase(WithDot(UsualExtension(format))) && !format.worldExtension.empty()) {
      return WithDot(format.worldExtension);
    }
  }
  return "";
}

}  // namespace rasterkit
