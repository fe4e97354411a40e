#include <memory>

#include "tool/pictures/convert_picture.h"
#include "tool/verbs/verbs.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {

VerbRunner AddConvertVerb(CLI::App& app) {
  CLI::App& verb = *app.add_subcommand("convert", "write a picture upright in any supported type");
  verb.group("Verbs");
  verb.footer(
      "The output's extension chooses the type: .bmp, .jpg, .png, .tif. TIFF, GIF and WebP files "
      "of "
      "several\n"
      "pictures give the first one. A metafile becomes pixels, 96 an inch unless --dpi or --size "
      "say\n"
      "otherwise; under .emf or .wmf it stays one: copied as it is, an EMF file as a WMF file with "
      "its\n"
      "picture in it, a WMF file as an EMF file that draws the same.\n\n"
      "Examples:\n"
      "  rasterkit convert photo.jpg upright.png\n"
      "  rasterkit convert --out-dir site --type jpg --quality 80 --jobs 2 *.JPG\n"
      "  rasterkit convert plan.png plan.bmp --bits 1 --overwrite\n"
      "  rasterkit convert scan.tif scan-small.tif --bits 1 --compression g4\n"
      "  rasterkit convert drawing.emf drawing.png --dpi 300");
  const auto output = std::make_shared<OutputOptions>();
  const auto picture = std::make_shared<PictureOptions>();
  output->takesMetafiles = true;
  AddOutputOptions(verb, *output);
  AddType(verb, *output);
  AddAngle(verb, *picture, false);
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
