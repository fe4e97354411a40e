#include <rasterkit/bitmaptools/engine/sharpen.h>
#include <rasterkit/bitmaptools/engine/shift_colors.h>

#include "apps/rasterkit/adjust_values.h"
#include "apps/rasterkit/change_colors.h"
#include "apps/rasterkit/exit_code.h"
#include "apps/rasterkit/picture_verb.h"
#include "apps/rasterkit/transparency.h"

namespace rasterkit::tool {
namespace {

/// Percentages, -100 to 100.
struct Values {
  int brightness = 0, contrast = 0, sharpen = 0, red = 0, green = 0, blue = 0;
};

void ChangePixels(TBitmap& pixels, const Values& values, int threads) {
  ChangeBrightness(pixels, values.brightness, threads);
  ChangeContrast(pixels, values.contrast, threads);
  Sharpen(&pixels, values.sharpen);
  ShiftColors(&pixels, static_cast<float>(values.red), static_cast<float>(values.green),
              static_cast<float>(values.blue));
}

void Adjust(Subject& picture, const Values& values) {
  TBitmap& bitmap = *picture.bitmap;
  const auto change = [&](TBitmap& pixels) { ChangePixels(pixels, values, picture.Threads()); };
  if (values.sharpen == 0) return ChangeColors(bitmap, change);
  // Neighbours matter: a palette will not do.
  const AlphaPlane alphas(bitmap);
  bitmap.SetPixelFormat(pf24bit);
  change(bitmap);
  alphas.Restore(bitmap);
}

void AddValue(PictureVerb& verb, const std::string& name, int& value,
              const std::string& description) {
  verb.Number(name, "P", value, {-100, 100}, description);
}

}  // namespace

VerbRunner AddAdjustVerb(CLI::App& app) {
  PictureVerb verb(
      app, "adjust", "change brightness, contrast, sharpness and colours at once",
      "Percentages from -100 to 100; 0 is no change. They are applied in this order: "
      "brightness, contrast,\n"
      "sharpness, colours. Pictures with a palette keep it and their depth unless "
      "--sharpen is given; all\n"
      "others become true colour.\n\n"
      "Example:\n"
      "  rasterkit adjust photo.jpg better.jpg --brightness 10 --contrast 20 --sharpen "
      "30 --blue -5");
  const auto values = std::make_shared<Values>();
  AddValue(verb, "--brightness", values->brightness, "lighter or darker [0]");
  AddValue(verb, "--contrast", values->contrast, "more or less contrast [0]");
  AddValue(verb, "--sharpen", values->sharpen, "sharper, or softer below 0 [0]");
  AddValue(verb, "--red", values->red, "more or less red [0]");
  AddValue(verb, "--green", values->green, "more or less green [0]");
  AddValue(verb, "--blue", values->blue, "more or less blue [0]");
  return verb.Changing([values](Subject& picture) { Adjust(picture, *values); });
}

}  // namespace rasterkit::tool
