#include <memory>
#include <optional>

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

PictureChange Prepare(const AdjustOptions& options) {
  if (!options.values.AreGiven() && !options.asksUser) {
    throw Failure(exitWrongUsage,
                  "adjust needs at least one of --brightness, --contrast, --sharpen, --red, "
                  "--green, --blue, or --dialog");
  }
  const AdjustColors typed = ChangeOf(options.values);
  const auto desktop = options.asksUser ? std::make_shared<Desktop>() : nullptr;
  return [typed, desktop](PictureWork& work) {
    AdjustColors change = typed;
    if (desktop) change = desktop->ChooseValues(*work.Bitmap(), typed, work.job.input);
    work.Add(ChangeStep{change});
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
