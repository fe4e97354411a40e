#include <rasterkit/dialogs/size/choose_size.h>
#include <rasterkit/dialogs/size/choose_size_form.h>
#include <rasterkit/dialogs/size/size_answer.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

constexpr const char* kSection = "Settings";
constexpr const char* kUnitKey = "ChooseSize.Unit";

}  // namespace

std::optional<RecipeResize> ChooseSize(const Picture& picture, const RecipeResize& start,
                                       QWidget* parent) {
  const TModalCall call;
  ChangeSizeModel model(picture.Width(), picture.Height(), kEditorSizeRules);
  StartSize(model, picture, start, SizeUnitOf(ReadSetting(kSection, kUnitKey).value_or("")));
  TFormChooseSize form(model, picture, parent);
  if (form.ShowModal() != mrOk) return std::nullopt;
  WriteSetting(kSection, kUnitKey, SizeUnitName(model.Unit()));
  return SizeStepOf(model, picture);
}

}  // namespace rasterkit
