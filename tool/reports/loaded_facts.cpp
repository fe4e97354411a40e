#include "tool/reports/loaded_facts.h"

#include <rasterkit/raster/pixel_format.h>

#include "tool/pictures/picture_input.h"
#include "tool/pictures/placement/position_tags.h"

namespace rasterkit::tool {
namespace {

/// Gray frames have no palette: they use a gray ramp.
int PaletteEntries(const ImagingFrame& frame) {
  switch (frame.format) {
    case GUID_WICPixelFormatBlackWhite:
      return 2;
    case GUID_WICPixelFormat4bppGray:
      return 16;
    case GUID_WICPixelFormat8bppGray:
      return 256;
    default:
      return IsIndexed(frame.rows.Format()) ? frame.rows.palette.Count() : 0;
  }
}

void TakeRows(PictureFacts& facts, const ImagingFrame& frame) {
  const Raster& rows = frame.rows;
  facts.width = rows.Width();
  facts.height = rows.Height();
  facts.bits = StoredBitsPerPixel(rows.Format());
  facts.paletteEntries = PaletteEntries(frame);
  facts.transparent = rows.transparentColor.has_value() || rows.alphaFormat == afDefined;
  if (rows.resolution.IsKnown()) facts.dpi = {rows.resolution.x, rows.resolution.y};
}

}  // namespace

void LoadForFacts(LoadedFrame& loaded, const std::string& file) {
  MetafileDrawing drawing;
  drawing.isForFacts = true;
  LoadFrameInto(loaded, file, 1, drawing);
}

void TakeLoadedFacts(PictureFacts& facts, const LoadedFrame& loaded) {
  const bool isRead = facts.error.empty();
  if (loaded.bytes > 0 || isRead) facts.type = PictureTypeName(loaded.type);
  facts.bytes = loaded.bytes;
  facts.metadata = MetadataKindNames(loaded.metadata);
  facts.photo = loaded.photo;
  if (isRead && loaded.type != PictureType::jpeg) facts.photo.rotation = 0;
  facts.warnings = loaded.warnings;
  facts.tiff = loaded.tiff;
  facts.metafile = loaded.metafile;
  if (loaded.grid) facts.grid = GridTypeName(*loaded.grid);
  facts.pages = loaded.tiff ? loaded.tiff->pages : loaded.frames;
  if (!isRead) return;
  TakeRows(facts, loaded.frame);
  if (loaded.metafile) {
    facts.width = loaded.metafile->width;
    facts.height = loaded.metafile->height;
  }
  facts.placement = ReadPlacement(facts.file, PositionTagsOf(loaded.tiff.value_or(TiffFacts())),
                                  facts.width, facts.height);
  const std::vector<std::string>& warnings = facts.placement.warnings;
  facts.warnings.insert(facts.warnings.end(), warnings.begin(), warnings.end());
}

}  // namespace rasterkit::tool
