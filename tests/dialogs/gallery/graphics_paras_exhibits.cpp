#include <rasterkit/dialogs/savedlgbitmap/form_graphics_paras.h>

#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

std::unique_ptr<TFormGraphicsParas> OnPaper(const TrecSaveBitmap& rec) {
  auto form = std::make_unique<TFormGraphicsParas>();
  form->Model().SetSizeMM(210, 297);
  form->Model().SetSaveOptions(rec);
  return form;
}

const Exhibit kBitmap("graphics-settings", [] { return OnPaper({8, 24, 300, 0, 90}); });

const Exhibit kJpeg("graphics-settings-jpeg", [] { return OnPaper({6, 24, 150, 0, 75}); });

const Exhibit kPixels("graphics-settings-pixels", [] {
  auto form = std::make_unique<TFormGraphicsParas>();
  form->Model().HideGroup(ParasGroup::resolution);
  form->Model().HideGroup(ParasGroup::millimeters);
  form->Model().SetBmpSize(4000, 3000);
  form->Model().SetSaveOptions({10, 8, 300, 0, 90});
  return form;
});

/// As the save dialog opens it.
const Exhibit kQuality("graphics-settings-quality", [] {
  auto form = std::make_unique<TFormGraphicsParas>();
  form->HideHelp();
  form->Model().HideGroup(ParasGroup::type);
  form->Model().HideGroup(ParasGroup::pixelSize);
  form->Model().SetSizeMM(0, 0);
  form->Model().SetSaveOptions({6, 24, 300, 0, 90});
  return form;
});

}  // namespace
}  // namespace rasterkit::test
