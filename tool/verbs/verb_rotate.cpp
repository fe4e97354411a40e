#include <memory>

#include "tool/command/command_line.h"
#include "tool/command/isolation_option.h"
#include "tool/command/shared_options.h"
#include "tool/pictures/convert_picture.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {

VerbRunner AddRotateVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"rotate",
       "turn a picture by any angle",
       {"The picture is turned as you see it: a photograph is turned upright first. Multiples of "
        "90 degrees move whole pixels and change none."},
       {"rasterkit rotate plan.png turned.png --angle 30 --background C0C0C0",
        "rasterkit rotate photo.jpg left.jpg --angle 90 --quality 95"}});
  const auto output = std::make_shared<OutputOptions>();
  const auto picture = std::make_shared<PictureOptions>();
  output->takesInPlace = true;
  AddOutputOptions(verb, *output);
  AddIsolate(verb);
  AddType(verb, *output);
  AddAngle(verb, *picture).Required();
  AddBackground(verb, *picture);
  AddQuality(verb, *picture);
  AddCompression(verb, *picture);
  AddThreads(verb, *picture);
  return [output, picture] {
    return RunJobs(*output, PlanJobs(*output),
                   [&](const Job& job) { return ConvertPicture(job, *picture); });
  };
}

}  // namespace rasterkit::tool
