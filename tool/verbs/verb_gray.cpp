#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddGrayVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"gray",
       "make a picture gray",
       {"True color becomes 8-bit gray. Pictures with a palette keep their depth and "
        "get a gray palette. Pictures with transparency keep it and stay true color."},
       {"rasterkit gray photo.jpg gray.jpg", "rasterkit gray photo.jpg gray.png --true-color"}});
  const auto trueColor = std::make_shared<bool>(false);
  verb.Flag("--true-color", *trueColor, "keep true color: 24-bit instead of 8-bit");
  return verb.Changing(
      [trueColor](PictureWork& work) { work.Add(ChangeStep{MakeGray{*trueColor}}); });
}

}  // namespace rasterkit::tool
