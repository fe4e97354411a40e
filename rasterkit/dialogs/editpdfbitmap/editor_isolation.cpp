#include <atomic>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/dialogs/editpdfbitmap/editor_isolation.h>
#include <rasterkit/pictures/reading/load_graphic_isolated.h>

namespace rasterkit::detail {
namespace {

std::atomic<Isolation> isolation = Isolation::none;

}  // namespace

void SetEditorIsolation(Isolation value) {
  isolation = value;
}

std::unique_ptr<TGraphic> LoadForEditor(const std::string& fileName) {
  return isolation == Isolation::process ? LoadGraphicIsolated(fileName) : LoadGraphic(fileName);
}

}  // namespace rasterkit::detail
