#include <algorithm>
#include <memory>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/icon.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "tool/command/interruption.h"
#include "tool/pictures/convert_picture.h"
#include "tool/pictures/crop_rows.h"
#include "tool/pictures/picture_size.h"
#include "tool/pictures/transparency.h"
#include "tool/verbs/verbs.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

struct IconOptions {
  OutputOptions output;
  /// As typed; checked by then. Empty keeps the size.
  std::string size;
  bool leftHalf = false;
  bool solid = false;
};

constexpr int kLargestIcon = 256;

/// What is transparent in the picture stays so; else the colour of the top left pixel becomes it.
void MakeAlpha(std::unique_ptr<TBitmap>& bitmap, bool solid) {
  if (HasTransparency(*bitmap) || solid) return MakeAlphaChannel(*bitmap);
  TIcon icon;
  CopyBitmapToIcon(bitmap.get(), icon, false);
  bitmap = icon.ColorBitmap().Clone();
}

/// After the key colour has become alpha, so that it does not bleed into its neighbours.
void Stretch(std::unique_ptr<TBitmap>& bitmap, const std::string& size) {
  const auto wanted = ParseSize(size).value().For(bitmap->Width(), bitmap->Height());
  auto stretched = std::make_unique<TBitmap>();
  stretched->ResetPixels(pf32bit, wanted.width, wanted.height);
  stretched->SetAlphaFormat(afDefined);
  stretched->Canvas().StretchMode = smHalftone;
  stretched->Canvas().CopyStretched({0, 0, wanted.width, wanted.height}, *bitmap);
  bitmap = std::move(stretched);
}

void MakeIcon(Subject& picture, const IconOptions& options) {
  TBitmap& bitmap = *picture.bitmap;
  if (options.leftHalf) {
    if (bitmap.Width() < 2) picture.Refuse("a picture of one column has no left half");
    Crop(bitmap, {0, 0, bitmap.Width() / 2, bitmap.Height()});
  }
  MakeAlpha(picture.bitmap, options.solid);
  if (!options.size.empty()) Stretch(picture.bitmap, options.size);
  if (std::max(picture.bitmap->Width(), picture.bitmap->Height()) > kLargestIcon)
    picture.Refuse("an icon has at most 256 x 256 pixels; --size 256x makes it smaller");
  picture.bitmap->SetProfile({});
  picture.bitmap->SetDpi({});
  picture.place.reset();
}

void WriteIcon(const LoadedPicture& picture, const Job& job) {
  TIcon icon;
  icon.Assign(picture.bitmap.get());
  const WholeOutput whole;
  AtomicFile file(job.output);
  icon.SaveToStream(file);
  StopIfInterrupted();
  file.Commit();
}

int Run(IconOptions options) {
  if (!options.output.outDir.empty()) options.output.type = "ico";
  const std::vector<Job> jobs = PlanJobs(options.output, ".ico");
  const PictureSteps steps = {[&](Subject& picture) { MakeIcon(picture, options); }, WriteIcon,
                              "ico"};
  return RunJobs(options.output, jobs,
                 [&](const Job& job) { return ConvertPicture(job, PictureOptions(), steps); });
}

}  // namespace

VerbRunner AddIconVerb(CLI::App& app) {
  CLI::App& verb = *app.add_subcommand("icon", "make a Windows icon (.ico) of a picture");
  verb.group("Verbs");
  verb.footer(
      "What is transparent in the picture is so in the icon. In a picture without transparency the "
      "colour of the\n"
      "top left pixel becomes transparent everywhere, unless --solid is given.\n\n"
      "Examples:\n"
      "  rasterkit icon logo.png logo.ico --size 64x64\n"
      "  rasterkit icon button-strip.bmp button.ico --left-half");
  const auto options = std::make_shared<IconOptions>();
  verb.add_option("--size", options->size,
                  "width and height in pixels, at most 256; one of them alone keeps the "
                  "proportions [as it is]")
      ->check(CheckSize)
      ->type_name("WxH|Wx|xH");
  verb.add_flag("--left-half", options->leftHalf,
                "take the left half: the first picture of a button strip");
  verb.add_flag("--solid", options->solid, "no colour becomes transparent");
  AddOutputOptions(verb, options->output);
  return [options] { return Run(*options); };
}

}  // namespace rasterkit::tool
