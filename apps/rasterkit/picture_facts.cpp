#include "apps/rasterkit/picture_facts.h"

#include "apps/rasterkit/exit_code.h"
#include "apps/rasterkit/picture_file.h"

namespace rasterkit::tool {
namespace {

/// The reason without the file's name in front, which a line of `info` has already.
std::string ReasonOf(const std::string& message, const std::string& file) {
  const std::string prefix = file + ": ";
  return message.rfind(prefix, 0) == 0 ? message.substr(prefix.size()) : message;
}

void TakePixelFacts(PictureFacts& facts, const TBitmap& bitmap) {
  facts.width = bitmap.Width();
  facts.height = bitmap.Height();
  facts.bits = bitmap.StoredBits();
  if (IsIndexed(bitmap.PixelFormat())) facts.paletteEntries = bitmap.Palette().Count();
  facts.transparent = bitmap.Transparent() || bitmap.AlphaFormat() == afDefined;
  const Resolution dpi = bitmap.Dpi();
  if (dpi.IsKnown()) facts.dpi = {dpi.x, dpi.y};
}

}  // namespace

PictureFacts GatherFacts(const std::string& file) {
  PictureFacts facts;
  facts.file = file;
  LoadedPicture picture;
  try {
    LoadPictureInto(picture, file);
    TakePixelFacts(facts, *picture.bitmap);
  } catch (const Failure& failure) {
    facts.error = ReasonOf(failure.what(), file);
  }
  const bool wasOpened = picture.bytes > 0 || facts.error.empty();
  if (wasOpened) facts.type = PictureTypeName(picture.type);
  facts.bytes = picture.bytes;
  facts.metadata = picture.metadata;
  facts.photo = picture.photo;
  if (facts.error.empty() && picture.type != PictureType::jpeg) facts.photo.rotation = 0;
  facts.warnings = picture.warnings;
  if (const auto worldFile = FindWorldFile(file)) facts.worldFile = ReadWorldFile(*worldFile);
  return facts;
}

}  // namespace rasterkit::tool
