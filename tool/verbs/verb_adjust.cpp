#include <memory>
#include <optional>
#include <utility>

#include <rasterkit/bitmaptools/engine/sharpen.h>
#include <rasterkit/bitmaptools/engine/shift_colors.h>

#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/pictures/adjust_values.h"
#include "tool/pictures/alpha_channel.h"
#include "tool/pictures/change_colors.h"
#include "tool/pictures/entry_colors.h"
#include "tool/pictures/palette_indexes.h"
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

float Percent(const std::optional<int>& value) {
  return static_cast<float>(value.value_or(0));
}

void ChangePixels(TBitmap& pixels, const Values& values, int threads) {
  ChangeBrightness(pixels, values.brightness.value_or(0), threads);
  ChangeContrast(pixels, values.contrast.value_or(0), threads);
  Sharpen(&pixels, values.sharpen.value_or(0));
  ShiftColors(&pixels, Percent(values.red), Percent(values.green), Percent(values.blue));
}

void Adjust(const Values& values, Subject& picture) {
  TBitmap& bitmap = *picture.bitmap;
  const auto change = [&](TBitmap& pixels) { ChangePixels(pixels, values, picture.Threads()); };
  if (values.sharpen.value_or(0) == 0) return ChangeColors(bitmap, change);
  // Sharpening depends on neighboring pixels, so it cannot change the palette alone.
  const AlphaPlane alphas(bitmap);
  bitmap.SetPixelFormat(pf24bit);
  change(bitmap);
  alphas.Restore(bitmap);
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
void AskAndAdjust(const Desktop& desktop, const Values& start, Subject& picture) {
  std::unique_ptr<TBitmap> pixels = picture.bitmap->Clone();
  const AlphaPlane alphas(*pixels);
  pixels->SetPixelFormat(pf24bit);
  TChgBmpValuesRec values = RecordOf(start);
  desktop.Adjust(*pixels, values, picture);
  if (HasIndexes(*picture.bitmap)) {
    const auto colors = ChangedEntries(*picture.bitmap, *pixels);
    if (colors) return SetEntryColors(*picture.bitmap, *colors);
  }
  alphas.Restore(*pixels);
  picture.bitmap = std::move(pixels);
}

PictureChange Prepare(const AdjustOptions& options) {
  if (!options.values.AreGiven() && !options.asksUser) {
    throw Failure(exitWrongUsage,
                  "adjust needs at least one of --brightness, --contrast, --sharpen, --red, "
                  "--green, --blue, or --dialog");
  }
  const Values values = options.values;
  if (!options.asksUser) return [values](Subject& picture) { Adjust(values, picture); };
  return [values, desktop = std::make_shared<Desktop>()](Subject& picture) {
    AskAndAdjust(*desktop, values, picture);
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
  verb.WorksOnThreads();
  return verb.ChangingAfter([options] { return Prepare(*options); });
}

}  // namespace rasterkit::tool
