#include <memory>
#include <optional>

#include <rasterkit/bands/colors/entry_changes.h>
#include <rasterkit/bands/colors/index_pixels.h>
#include <rasterkit/bands/colors/opacity_plane.h>

#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// Percentages, -100 to 100, if they were given.
struct Values {
  std::optional<int> brightness, contrast, sharpen, red, green, blue;

  bool AreGiven() const { return brightness || contrast || sharpen || red || green || blue; }
};

struct AdjustOptions {
  Values values;
  bool asksUser = false;
};

AdjustColors ChangeOf(const Values& values) {
  return {values.brightness.value_or(0), values.contrast.value_or(0), values.sharpen.value_or(0),
          values.red.value_or(0),        values.green.value_or(0),    values.blue.value_or(0)};
}

TChgBmpValuesRec RecordOf(const Values& values) {
  TChgBmpValuesRec record;
  record.Brightness = values.brightness.value_or(0);
  record.Contrast = values.contrast.value_or(0);
  record.Sharpen = values.sharpen.value_or(0);
  record.Red = values.red.value_or(0);
  record.Green = values.green.value_or(0);
  record.Blue = values.blue.value_or(0);
  return record;
}

/// The window works on true color. The result must be what the user saw, so the palette is kept
/// only if it can express that.
void AskAndAdjust(const Desktop& desktop, const Values& start, PictureWork& work) {
  std::unique_ptr<TBitmap> shown = work.Bitmap();
  std::unique_ptr<TBitmap> pixels = shown->Clone();
  const detail::AlphaPlane alphas(*pixels);
  pixels->SetPixelFormat(pf24bit);
  TChgBmpValuesRec values = RecordOf(start);
  desktop.Adjust(*pixels, values, work.job.input);
  const auto colors =
      detail::HasIndexes(*shown) ? detail::ChangedEntries(*shown, *pixels) : std::nullopt;
  if (colors) {
    detail::SetEntryColors(*shown, *colors);
  } else {
    alphas.Restore(*pixels);
    shown = std::move(pixels);
  }
  work.picture.Apply(PixelsStep{std::move(shown)});
}

PictureChange Prepare(const AdjustOptions& options) {
  if (!options.values.AreGiven() && !options.asksUser) {
    throw Failure(exitWrongUsage,
                  "adjust needs at least one of --brightness, --contrast, --sharpen, --red, "
                  "--green, --blue, or --dialog");
  }
  const Values values = options.values;
  if (!options.asksUser) {
    return [values](PictureWork& work) { work.picture.Change(ChangeOf(values)); };
  }
  return [values, desktop = std::make_shared<Desktop>()](PictureWork& work) {
    AskAndAdjust(*desktop, values, work);
  };
}

void AddValue(PictureVerb& verb, const std::string& name, std::optional<int>& value,
              const std::string& description) {
  verb.Number(name, "P", value, {-100, 100}, description);
}

}  // namespace

VerbRunner AddAdjustVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"adjust",
       "change brightness, contrast, sharpness and colors",
       {"Values are percentages from -100 to 100; 0 changes nothing. They are applied in this "
        "order: brightness, contrast, sharpness, colors.",
        "Pictures with a palette keep the palette and their depth unless they are sharpened; all "
        "others become true color.",
        "With --dialog a window shows the picture before and after the change. Canceling the "
        "window ends with exit code 1."},
       {"rasterkit adjust photo.jpg better.jpg --brightness 10 --contrast 20 --sharpen 30",
        "rasterkit adjust photo.jpg better.jpg --dialog --contrast 20"}});
  const auto options = std::make_shared<AdjustOptions>();
  Values& values = options->values;
  AddValue(verb, "--brightness", values.brightness, "lighter or darker, -100 to 100 [0]");
  AddValue(verb, "--contrast", values.contrast, "more or less contrast, -100 to 100 [0]");
  AddValue(verb, "--sharpen", values.sharpen, "sharper, or softer below 0, -100 to 100 [0]");
  AddValue(verb, "--red", values.red, "more or less red, -100 to 100 [0]");
  AddValue(verb, "--green", values.green, "more or less green, -100 to 100 [0]");
  AddValue(verb, "--blue", values.blue, "more or less blue, -100 to 100 [0]");
  verb.Dialog(options->asksUser, "set the values in a window that starts with those given here");
  return verb.ChangingAfter([options] { return Prepare(*options); });
}

}  // namespace rasterkit::tool
