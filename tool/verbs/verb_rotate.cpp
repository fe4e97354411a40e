#include <memory>

#include "tool/pictures/convert_picture.h"
#include "tool/verbs/verbs.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {

VerbRunner AddRotateVerb(CLI::App& app) {
  CLI::App& verb = *app.add_subcommand("rotate", "turn a picture by any angle");
  verb.group("Verbs");
  verb.footer(
      "The picture is turned as it is seen: a photograph is set upright first. Multiples of 90 "
      "degrees\n"
      "move whole pixels and change none.\n\n"
      "Examples:\n"
      "  rasterkit rotate plan.png turned.png --angle 30 --background C0C0C0\n"
      "  rasterkit rotate photo.jpg left.jpg --angle 90 --quality 95");
  const auto output = std::make_shared<OutputOptions>();
  const auto picture = std::make_shared<PictureOptions>();
  AddOutputOptions(verb, *output);
  AddType(verb, *output);
  AddAngle(verb, *picture, true);
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
