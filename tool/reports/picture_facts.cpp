#include "tool/reports/picture_facts.h"

#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/exit_code.h"
#include "tool/pictures/picture_input.h"
#include "tool/pictures/placement/world_file.h"

namespace rasterkit::tool {
namespace {

/// The reason without the file name, which the line of `info` already contains.
std::string ReasonOf(const std::string& message, const std::string& file) {
  const std::string prefix = file + ": ";
  return message.rfind(prefix, 0) == 0 ? message.substr(prefix.size()) : message;
}

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

void TakePixelFacts(PictureFacts& facts, const ImagingFrame& frame) {
  const Raster& rows = frame.rows;
  facts.width = rows.Width();
  facts.height = rows.Height();
  facts.bits = StoredBitsPerPixel(rows.Format());
  facts.paletteEntries = PaletteEntries(frame);
  facts.transparent = rows.transparentColor.has_value() || rows.alphaFormat == afDefined;
  if (rows.resolution.IsKnown()) facts.dpi = {rows.resolution.x, rows.resolution.y};
}

/// Adds all positions, and warnings about them.
void TakePositions(PictureFacts& facts) {
  facts.positions = PositionsOf(facts.file, facts.tiff.value_or(TiffFacts()));
  const auto worldFile = FindWorldFile(facts.file);
  if (worldFile && !ReadWorldFile(*worldFile)) {
    facts.warnings.push_back(*worldFile + " does not begin with six numbers and is ignored");
  }
  if (!facts.error.empty() || facts.pdf) return;
  if (const auto doubt = PositionDoubt(facts.positions, facts.width, facts.height)) {
    facts.warnings.push_back(*doubt);
  }
}

void TakePdfFacts(PictureFacts& facts) {
  // Other programs would take a PDF file under another name for a picture.
  if (!IsPdfName(facts.file)) {
    facts.error += "; the name of a PDF file must end in .pdf";
    return;
  }
  try {
    facts.pdf = GatherPdfFacts(facts.file, facts.warnings);
    facts.error.clear();
  } catch (const Failure& failure) {
    facts.error = ReasonOf(failure.what(), facts.file);
  }
}

}  // namespace

PictureFacts GatherFacts(const std::string& file) {
  PictureFacts facts;
  facts.file = file;
  LoadedFrame loaded;
  try {
    MetafileDrawing drawing;
    drawing.isForFacts = true;
    LoadFrameInto(loaded, file, 1, drawing);
    TakePixelFacts(facts, loaded.frame);
    if (loaded.metafile) {
      facts.width = loaded.metafile->width;
      facts.height = loaded.metafile->height;
    }
  } catch (const Failure& failure) {
    facts.error = ReasonOf(failure.what(), file);
  }
  const bool wasOpened = loaded.bytes > 0 || facts.error.empty();
  if (wasOpened) facts.type = PictureTypeName(loaded.type);
  facts.bytes = loaded.bytes;
  facts.metadata = MetadataKindNames(loaded.metadata);
  facts.photo = loaded.photo;
  if (facts.error.empty() && loaded.type != PictureType::jpeg) facts.photo.rotation = 0;
  facts.warnings = loaded.warnings;
  if (loaded.type == PictureType::pdf) TakePdfFacts(facts);
  facts.tiff = loaded.tiff;
  facts.metafile = loaded.metafile;
  if (loaded.grid) facts.grid = GridTypeName(*loaded.grid);
  facts.pages = loaded.tiff ? loaded.tiff->pages : loaded.frames;
  TakePositions(facts);
  return facts;
}

}  // namespace rasterkit::tool
