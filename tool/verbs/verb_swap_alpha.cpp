#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddSwapAlphaVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"swap-alpha",
       "swap transparent and visible pixels",
       {"Fully transparent pixels become visible. All others become transparent, even if they are "
        "partly transparent. Colors do not change. A picture without transparency is refused (exit "
        "code 4)."},
       {"rasterkit swap-alpha hole.png plug.png"}});
  return verb.Changing([](PictureWork& work) { work.Add(ChangeStep{SwapOpacity()}); });
}

}  // namespace rasterkit::tool
