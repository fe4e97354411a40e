#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {

VerbRunner AddPdfWhiteVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"pdf-white",
       "make white the transparent color of PDF exports",
       {"PDF exports treat the color of the bottom left pixel as transparent. That pixel becomes "
        "white; in a palette white also becomes the last entry. No other pixel looks different."},
       {"rasterkit pdf-white plan.png plan-for-pdf.png"}});
  return verb.Changing([](PictureWork& work) { work.Add(ChangeStep{WhiteForPdf()}); });
}

}  // namespace rasterkit::tool
