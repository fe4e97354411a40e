#include <algorithm>
#include <memory>

#include <fmt/core.h>

#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/icon.h>
#include <rasterkit/pictures/reading/picture_size.h>

#include "tool/arguments/size_argument.h"
#include "tool/command/command_line.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/output_file.h"
#include "tool/command/shared_options.h"
#include "tool/pictures/change_picture.h"
#include "tool/pictures/crop_rows.h"
#include "tool/pictures/recorder.h"
#include "tool/reports/loss_report.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

struct IconOptions {
  OutputOptions output;
  /// Size as typed, already checked. Empty keeps the size.
  std::string size;
  bool leftHalf = false;
  bool solid = false;
};

constexpr int kLargestIcon = 256;

/// Keeps the transparency of the picture. Without any, makes the color of the top left pixel
/// transparent.
void MakeAlpha(std::unique_ptr<TBitmap>& bitmap, bool solid) {
  if (detail::HasTransparency(*bitmap) || solid) return detail::MakeAlphaChannel(*bitmap);
  TIcon icon;
  CopyBitmapToIcon(bitmap.get(), icon, false);
  bitmap = icon.ColorBitmap().Clone();
}

/// Scales the picture after the key color became alpha, so that it does not bleed into neighboring
/// pixels.
void Stretch(std::unique_ptr<TBitmap>& bitmap, const std::string& size) {
  const auto wanted = ParseSize(size).value().For(bitmap->Width(), bitmap->Height());
  auto stretched = std::make_unique<TBitmap>();
  stretched->ResetPixels(pf32bit, wanted.width, wanted.height);
  stretched->SetAlphaFormat(afDefined);
  stretched->Canvas().StretchMode = smHalftone;
  stretched->Canvas().CopyStretched({0, 0, wanted.width, wanted.height}, *bitmap);
  bitmap = std::move(stretched);
}

void MakeIcon(std::unique_ptr<TBitmap>& bitmap, const IconOptions& options,
              const PictureWork& work) {
  if (options.leftHalf) {
    if (bitmap->Width() < 2) work.Refuse("a picture of one column has no left half");
    Crop(*bitmap, {0, 0, bitmap->Width() / 2, bitmap->Height()});
  }
  MakeAlpha(bitmap, options.solid);
  if (!options.size.empty()) Stretch(bitmap, options.size);
  if (std::max(bitmap->Width(), bitmap->Height()) > kLargestIcon) {
    work.Refuse("an icon has at most 256 x 256 pixels; --size 256x makes it smaller");
  }
}

/// An icon file holds nothing but pixels. The resolution says nothing there.
std::vector<Loss> LossesOf(const Picture& picture) {
  std::vector<Loss> losses;
  for (const LossKind kind : KindsOf(picture)) {
    if (kind == LossKind::resolution) continue;
    losses.push_back({kind, LossKindName(kind), "an icon file holds pixels alone"});
  }
  if (picture.Pages() > 1) {
    losses.push_back({LossKind::pages,
                      fmt::format("{} of {} pictures", picture.Pages() - 1, picture.Pages()),
                      "an icon file gets one picture"});
  }
  return losses;
}

JobResult WriteIcon(const Job& job, const IconOptions& options) {
  const PictureOptions plain;
  const PictureWork work{OpenPicture(job.input), job, plain};
  std::unique_ptr<TBitmap> bitmap;
  JobResult result;
  DoWork(job, [&] {
    bitmap = work.Bitmap();
    MakeIcon(bitmap, options, work);
  });
  StopIfInterrupted();
  TIcon icon;
  icon.Assign(bitmap.get());
  result.output.file =
      WriteOutput(job.output, job.saving, [&](TStream& stream) { icon.SaveToStream(stream); });
  result.type = "ico";
  result.width = bitmap->Width();
  result.height = bitmap->Height();
  result.bits = bitmap->StoredBits();
  result.losses = LossesOf(work.picture);
  return result;
}

int Run(IconOptions options) {
  if (!options.output.outDir.empty()) options.output.type = "ico";
  const std::vector<Job> jobs = PlanJobs(options.output, ".ico");
  return RunJobs(options.output, jobs, [&](const Job& job) { return WriteIcon(job, options); });
}

}  // namespace

VerbRunner AddIconVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"icon",
       "make a Windows icon (.ico) from a picture",
       {"Transparent parts of the picture are transparent in the icon. If the picture has no "
        "transparency, all pixels with the color of the top left pixel become transparent, unless "
        "--solid is given."},
       {"rasterkit icon logo.png logo.ico --size 64x64",
        "rasterkit icon button-strip.bmp button.ico --left-half"}});
  const auto options = std::make_shared<IconOptions>();
  verb.Text("--size", "WxH|Wx|xH", options->size, CheckSize,
            "width and height in pixels, at most 256; one side alone keeps the proportions [size "
            "of the picture]");
  verb.Flag("--left-half", options->leftHalf,
            "use only the left half: the first picture of a button strip");
  verb.Flag("--solid", options->solid, "make no color transparent");
  AddOutputOptions(verb, options->output);
  RefuseRecord(verb, "an icon is made of pixels that no recipe describes");
  AddIsolate(verb);
  return [options] { return Run(*options); };
}

}  // namespace rasterkit::tool
