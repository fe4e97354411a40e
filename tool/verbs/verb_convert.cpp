#include <memory>

#include "tool/command/command_line.h"
#include "tool/command/isolation_option.h"
#include "tool/command/shared_options.h"
#include "tool/pictures/convert_picture.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {

VerbRunner AddConvertVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"convert",
       "turn a picture upright and write it as another type",
       {"The extension of the output chooses its type: .bmp, .jpg, .png or .tif. TIFF, GIF and "
        "WebP files with several pictures give the first one.",
        "A metafile becomes pixels, at 96 pixels per inch unless --dpi or --size is given. If the "
        "output ends in .emf or .wmf, a metafile stays a metafile: the same type is copied, an "
        "EMF file becomes a WMF file that contains its picture, and a WMF file becomes an EMF "
        "file that draws the same."},
       {"rasterkit convert photo.jpg upright.png",
        "rasterkit convert --out-dir site --type jpg --quality 80 --jobs 2 *.JPG",
        "rasterkit convert plan.png plan.bmp --bits 1 --overwrite",
        "rasterkit convert scan.tif scan-small.tif --bits 1 --compression g4",
        "rasterkit convert drawing.emf drawing.png --dpi 300"}});
  const auto output = std::make_shared<OutputOptions>();
  const auto picture = std::make_shared<PictureOptions>();
  output->takesMetafiles = true;
  output->takesInPlace = true;
  AddOutputOptions(verb, *output);
  AddIsolate(verb);
  AddType(verb, *output);
  AddAngle(verb, *picture);
  AddBackground(verb, *picture);
  AddBits(verb, *picture);
  AddQuality(verb, *picture);
  AddCompression(verb, *picture);
  AddMetafileSize(verb, *picture);
  AddThreads(verb, *picture);
  return [output, picture] {
    return RunJobs(*output, PlanJobs(*output),
                   [&](const Job& job) { return ConvertPicture(job, *picture); });
  };
}

}  // namespace rasterkit::tool
