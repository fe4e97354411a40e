#include "tool/command/shared_options.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddConvertVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"convert",
       "turn a picture upright and write it as another type",
       {"The extension of the output chooses its type: .bmp, .jpg, .png or .tif. TIFF, GIF, "
        "WebP, JP2 and HEIF files with several pictures give the first one.",
        "A metafile becomes pixels, at 96 pixels per inch unless --dpi or --size is given. If the "
        "output ends in .emf or .wmf, a metafile stays a metafile: the same type is copied, an "
        "EMF file becomes a WMF file that contains its picture, and a WMF file becomes an EMF "
        "file that draws the same."},
       {"rasterkit convert photo.jpg upright.png",
        "rasterkit convert --out-dir site --format jpg --quality 80 --jobs 2 *.JPG",
        "rasterkit convert plan.png plan.bmp --bits 1 --overwrite",
        "rasterkit convert scan.tif scan-small.tif --bits 1 --compression g4",
        "rasterkit convert drawing.emf drawing.png --dpi 300",
        "rasterkit convert - - --format png < photo.jpg > photo.png"}});
  verb.TakesMetafiles();
  verb.UncoversCorners();
  const std::shared_ptr<PictureOptions> options = verb.Options();
  AddAngle(verb, *options);
  return verb.Changing([](PictureWork& work) {
    if (work.options.angle != 0) work.Add(RotateStep{work.options.angle, work.Corners()});
  });
}

}  // namespace rasterkit::tool
