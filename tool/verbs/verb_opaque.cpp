#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddOpaqueVerb(CommandLine& line) {
  PictureVerb verb(line, {"opaque",
                          "paint transparent parts with the background color",
                          {"Transparent pixels get the background color. Partly transparent "
                           "pixels are blended with it."},
                          {"rasterkit opaque logo.png on-white.png",
                           "rasterkit opaque logo.png on-gray.png --background C0C0C0"}});
  return verb.Changing(
      [](PictureWork& work) { work.Add(ChangeStep{PaintTransparency{work.Background()}}); });
}

}  // namespace rasterkit::tool
